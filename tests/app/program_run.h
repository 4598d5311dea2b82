// One start of the whole program on a described machine, with somebody in front of its desktop.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/host/machine.h"
#include "tests/support/test_folder.h"

namespace hostscope::test {

class ProgramRun {
 public:
  ProgramRun();
  // Ends the program, however far it has come.
  ~ProgramRun();
  ProgramRun(const ProgramRun&) = delete;
  ProgramRun& operator=(const ProgramRun&) = delete;

  host::Machine& machine() { return machine_; }
  host::Desktop& desktop() { return machine_.desktop; }
  // The program's folder.
  TestFolder& folder() { return folder_; }

  // A profile beside the program, with its sign.
  void WriteProfile(std::string_view rest, std::string_view name = "test.ini");
  // Has the item "Computer name..." wait until Resume, or until the process ends.
  void HoldWorker();
  void Resume() { held_ = false; }

  // Starts the program with what follows its name on the command line.
  void Start(std::string_view arguments = "");
  // The dialog, once it waits for the user; null when there is none.
  HWND WaitForDialog();
  // Until the worker has returned and its lines are there. False when it does not come to that.
  bool WaitForFinish();
  // Until the worker waits in the item of HoldWorker.
  bool WaitForHold();
  // The exit code; none when the program does not end.
  std::optional<int> WaitForExit();

  HWND dialog() const { return dialog_; }
  HWND Item(int id) const;
  HWND list() const;
  std::vector<std::string> Lines() const { return machine_.desktop.ListLines(list()); }
  int CurrentLine() const { return machine_.desktop.ListCurrentLine(list()); }
  // Presses a key, and waits until what comes of it is over.
  bool Press(WPARAM key) { return desktop().KeyPress(key); }
  bool ClickMiddle(HWND window);

 private:
  host::Machine machine_;
  host::UseMachine use_;
  TestFolder folder_;
  std::thread program_;
  HWND dialog_ = nullptr;
  std::atomic<bool> held_ = false;
  std::atomic<bool> at_hold_ = false;
  std::atomic<bool> ended_ = false;
  std::atomic<int> exit_code_ = 0;
};

}  // namespace hostscope::test
