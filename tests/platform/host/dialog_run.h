// A dialog of the test's own on a thread of its own, with a log of what its procedure is told.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/machine.h"
#include "platform/win32.h"

namespace host {

inline constexpr int kTestDialog = 500;
inline constexpr int kList = 10;
inline constexpr int kCheck = 11;
inline constexpr int kDisabled = 12;
inline constexpr int kButton = 13;
inline constexpr DWORD kControl = WS_CHILD | WS_VISIBLE | WS_TABSTOP;

// A list box, a check box "&Send", a disabled check box and a push button "&Go", one below the
// other, each 16 dialog units high and 100 wide.
DialogTemplate TestTemplate();

class DialogRun {
 public:
  // The hook sees every message first, on the dialog's thread; what it answers unless 0 is the
  // dialog procedure's answer. By default command 2 ends the dialog with result 5.
  using Hook = std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)>;
  explicit DialogRun(Hook hook = {}, const DialogTemplate& dialog = TestTemplate());
  // Ends the dialog, however far it has come.
  ~DialogRun();
  DialogRun(const DialogRun&) = delete;
  DialogRun& operator=(const DialogRun&) = delete;

  // Runs the dialog until it is shown and waits for the person.
  void Start();
  INT_PTR WaitForEnd();

  Machine& machine() { return machine_; }
  Desktop& desktop() { return machine_.desktop; }
  HWND dialog() const { return dialog_; }
  HWND Item(int id) const { return GetDlgItem(dialog_, id); }
  int FocusId() const { return GetDlgCtrlID(machine_.desktop.Focus()); }

  // What has been noted since the last asking, parted by ", ": commands, and what a test adds.
  std::string TakeLog();
  void Note(const std::string& what);

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

  Machine machine_;
  UseMachine use_;
  Hook hook_;
  std::thread thread_;
  HWND dialog_ = nullptr;
  INT_PTR result_ = -100;
  std::mutex mutex_;
  std::vector<std::string> log_;
};

}  // namespace host
