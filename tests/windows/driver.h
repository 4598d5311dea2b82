// Drives the program as the person before the screen does: starts it, reads what it shows, types
// and clicks. Nothing here waits longer than kPatienceMilliseconds.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/windows/interception.h"
#include "tests/windows/surroundings.h"

namespace drive {

inline constexpr char kLastLine[] = "Press any key...";

struct Start {
  // Each is put between double quotes.
  std::vector<std::string> arguments = {};
  // Taken as it stands instead of the program's name and the arguments, when not empty.
  std::string command_line = {};
  std::vector<Interception*> interceptions = {};
};

struct MessageBoxShown {
  HWND window = nullptr;
  HWND owner = nullptr;
  std::string caption;
  std::string text;
  std::vector<int> buttons;  // identifiers, in ascending order
};

// One started process. It is ended with this object when it still runs then.
class Program {
 public:
  explicit Program(const Folder& folder, const Start& start = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Waits for the dialog; null when none appears. `dialog` is the one that was waited for.
  HWND WaitForDialog();
  HWND dialog() const { return dialog_; }
  HWND Item(int id) const { return GetDlgItem(dialog_, id); }
  HWND List() const;
  HWND CheckBox() const;
  HWND CloseButton() const;
  HWND Focus() const;
  bool IsChecked() const;

  std::vector<std::string> Lines() const;
  // The index of the current line, LB_ERR (-1) when there is none.
  int CurrentLine() const;
  // Waits for the dialog and for a list that ends with this line.
  bool WaitForLine(const std::string& line);
  // Waits until the list asks for a key and the thread that filled it is gone.
  bool WaitUntilFinished();

  std::optional<MessageBoxShown> FindMessageBox() const;
  std::optional<MessageBoxShown> WaitForMessageBox() const;

  bool Runs() const;
  // The exit code; nothing when the process does not end.
  std::optional<DWORD> WaitForExit() const;
  // Ends the process as the task list does.
  void Kill();

 private:
  HWND FindDialog() const;
  // Whether a thread but the first one runs the program's own code. Those of the system's libraries
  // may outlive the worker.
  bool WorkerRuns() const;
  std::string ReadRemoteLine(int index) const;

  PROCESS_INFORMATION process_ = {};
  HWND dialog_ = nullptr;
};

// Runs the profile to its end, closes the dialog with a key and answers the report; the dialog's
// lines go to the list.
std::string ReportOf(const Folder& folder, const std::string& profile,
                     std::vector<Interception*> interceptions = {},
                     std::vector<std::string>* list = nullptr);

// SendMessage to a window of another process with a limit; -1 when no answer comes. Its list box
// messages count in 32 bits and know 16-bit text only.
LRESULT Ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0);

// Input, as it comes from the keyboard and the mouse: the system decides where it goes. A key goes
// to the window with the focus after `front` was brought to the front.
void TypeKey(HWND front, WORD virtual_key);
void MovePointer(HWND window, POINT client_point);
void PressMouseButton(HWND window, POINT client_point);
// Moves as a hand does, by many small steps: Wine loses a single one now and then.
void DragPointer(HWND window, POINT from, POINT to);
void ReleaseMouseButton(HWND window, POINT client_point);
void Click(HWND window, POINT client_point);
void ClickMiddle(HWND window);
POINT MiddleOf(HWND window);

// A message box is answered with a click on the button.
bool Answer(const MessageBoxShown& box, int button);

// Ends what the test program has started and what still runs.
void EndStartedProcesses();

}  // namespace drive
