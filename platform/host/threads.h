// What stands behind the thread functions of KERNEL32; for the layer's own files.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/host/handles.h"
#include "platform/host/windows_types.h"

namespace host {

inline constexpr DWORD kStillActive = 259;

class Thread : public Object {
 public:
  Thread();
  DWORD id() const { return id_; }

  // Whether it has ended and with which code: process.cpp guards both by its own lock.
  bool ended() const { return ended_; }
  DWORD exit_code() const { return exit_code_; }
  void SetEnded(DWORD exit_code) {
    ended_ = true;
    exit_code_ = exit_code;
  }
  // Its id is that of the calling thread from now on.
  void BecomeCurrent() const;

 private:
  DWORD id_;
  bool ended_ = false;
  DWORD exit_code_ = 0;
};

// Runs the routine on a new thread of the caller's process; its result is the exit code.
void StartThread(const std::shared_ptr<Thread>& thread, std::function<DWORD()> routine);
// False when the time is over first; no limit waits as long as it takes.
bool WaitForThread(const Thread& thread, std::optional<std::chrono::milliseconds> limit);
DWORD ExitCodeOf(const Thread& thread);
void SleepFor(std::chrono::milliseconds time);
[[noreturn]] void EndProcess(UINT code);

}  // namespace host
