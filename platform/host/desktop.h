// The desktop without a screen: what USER32 and GDI32 of the described machine work on, and the
// face by which a test (or the terminal) plays the person in front of it.
//
// Windows, messages, focus, capture, dialogs, list and check boxes behave as on Windows; painting
// is recorded as a list of drawing calls. The person's functions may be called from any thread.
// Called on the thread that owns the windows they work its message queue off; called on another one
// they return when that thread has dealt with the input and waits for more (in a dialog, or in a
// message box that the input has opened).
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/gdi32.h"
#include "platform/host/windows_types.h"

namespace host {

struct DesktopState;

// One drawing call on a window, with the state of its device context at that moment.
struct DrawingCall {
  std::string function =
      {};                 // "DrawTextA", "DrawEdge", "DrawFrameControl", "BitBlt", "FillRect", ...
  RECT rectangle = {};    // in client coordinates, as given
  std::string text = {};  // DrawTextA
  UINT kind = 0;          // DrawEdge: the edge; DrawFrameControl: the kind of control
  DWORD flags =
      0;  // DrawTextA: format; DrawEdge: sides; DrawFrameControl: state; BitBlt: operation
  COLORREF fill_color = 0;  // FillRect
  POINT source = {};        // BitBlt: corner in the source
  SIZE source_size = {};    // BitBlt: size of the bitmap in the source DC
  COLORREF text_color = 0;
  COLORREF background_color = 0;
  int background_mode = 0;
  LOGFONTA font = {};
};

struct ShownMessageBox {
  HWND owner = nullptr;
  std::string text;
  std::string caption;
  UINT style = 0;
  // The identifiers of its buttons, in order.
  std::vector<int> Buttons() const;
  // The button that Enter presses, and the one that Escape presses (0: none).
  int DefaultButton() const;
  int EscapeButton() const;
};

// A call of ShellExecuteA.
struct ShellOpening {
  HWND owner = nullptr;
  std::string verb;
  std::string target;
  int show_command = 0;
  bool has_parameters = false;
  bool has_folder = false;
};

// A line added to, or removed from, the end of a list box.
struct ListChange {
  HWND list = nullptr;
  bool added = false;
  std::string text;
};

struct DialogItem {
  std::string window_class;
  std::string text;
  int id = 0;
  int x = 0, y = 0, width = 0, height = 0;  // dialog units
  DWORD style = 0;
  DWORD extended_style = 0;
};
struct DialogTemplate {
  int x = 0, y = 0, width = 0, height = 0;  // dialog units
  DWORD style = 0;
  DWORD extended_style = 0;
  std::string caption;
  std::string font_face;
  int font_points = 0;
  std::vector<DialogItem> items;
};

class Desktop {
 public:
  using Limit = std::chrono::milliseconds;
  static constexpr Limit kLimit{20000};

  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // Facts of the machine.
  SIZE screen_size = {800, 600};
  int bits_per_pixel = 8;
  // The dialog resources: the program's own, and what a test adds.
  std::map<int, DialogTemplate> dialogs;

  // What there is to see.
  std::vector<HWND> TopWindows() const;           // topmost first
  std::vector<HWND> Children(HWND parent) const;  // in tab order
  std::string Text(HWND window) const;
  std::vector<std::string> ListLines(HWND list) const;
  int ListCurrentLine(HWND list) const;  // -1: none
  int ListTopLine(HWND list) const;
  HWND Focus() const;
  HWND Capture() const;
  HWND ActiveWindow() const;
  HCURSOR CursorAt(HWND window) const;  // the class cursor
  // The drawing calls on the window since the last asking, oldest first (at most the last 4096).
  std::vector<DrawingCall> TakeDrawing(HWND window);

  // What the person does. Points are client coordinates of the window; the window under the point
  // gets the message (or the one that holds the capture). Keys go to the window with the focus.
  // False when there is no such window, it is disabled, or the thread did not come to rest within
  // the limit.
  bool MouseMove(HWND window, int x, int y);
  bool MouseDown(HWND window, int x, int y);
  bool MouseUp(HWND window, int x, int y);
  bool Click(HWND window, int x, int y);
  bool KeyDown(WPARAM key, bool shift = false, bool alt = false);
  bool KeyUp(WPARAM key, bool shift = false, bool alt = false);
  bool KeyPress(WPARAM key, bool shift = false, bool alt = false);
  bool PressCloseBox(HWND window);

  // Waiting. The condition is looked at again after every change on the desktop.
  bool WaitUntil(const std::function<bool()>& condition, Limit limit = kLimit) const;
  // Until the thread of the window has nothing left to do: no message, no painting.
  bool WaitForRest(HWND window, Limit limit = kLimit) const;
  // Living threads other than the windows' own that have sent messages to a window.
  int SendingThreads() const;

  // Message boxes. The stated answers come first, in their order, then AnswerMessageBox. A box that
  // nobody answers within the patience is closed with 0, unless there is no patience set.
  void StateAnswers(std::vector<int> answers);
  void SetPatience(std::optional<Limit> patience);
  std::optional<ShownMessageBox> OpenMessageBox() const;  // the one that waits for an answer
  bool AnswerMessageBox(int answer);                      // false: none is open
  std::vector<ShownMessageBox> MessageBoxes() const;      // every one shown so far

  // What the shell was asked to open, in order.
  std::vector<ShellOpening> ShellOpenings() const;

  // Called on the thread of the list box, after the change.
  void ListenToLists(std::function<void(const ListChange&)> listener);
  // Called at every change, with the desktop locked: it may only wake somebody.
  void ListenToChanges(std::function<void()> listener);

  // Wakes every waiting thread, so that those of an ended process look and end.
  void Wake();
  // Ends every modal loop and message box at once, and each later one, so that a test that failed
  // can end its threads.
  void GiveUp();

  DesktopState& state() const { return *state_; }

 private:
  std::shared_ptr<DesktopState> state_;
};

}  // namespace host
