#pragma once

#include "platform/win32.h"
#include "profile/profile_settings.h"
#include "report/run_state.h"

namespace hostscope {

// The one thread that makes the report. Its handle is kept in the run state. The object must
// outlive the thread, which may be as late as the end of the process.
class WorkerThread {
 public:
  WorkerThread(RunState& state, ProfileSettings& settings) : state_(state), settings_(settings) {}
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

  // Starts the run, which shows itself in the list and ends with the request for a key.
  void Start(HWND progress_list);
  // Whether the thread was started and has not returned; a finished one and one that never was
  // count alike. Asked of the thread itself: nothing is sent when it ends.
  bool running() const;
  // Closes the handle; the thread goes on.
  void Close();

 private:
  static DWORD WINAPI Routine(LPVOID worker);

  RunState& state_;
  ProfileSettings& settings_;
  HWND progress_list_ = nullptr;
};

}  // namespace hostscope
