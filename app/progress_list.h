#pragma once

#include "app/controls/control_window.h"
#include "app/worker_thread.h"

namespace hostscope {

// The dialog's list of progress lines. It has no scroll bar: once the worker has finished, keys and
// clicks move its current line, and any other key ends the dialog.
class ProgressList {
 public:
  explicit ProgressList(const WorkerThread& worker) : worker_(worker) {}
  ProgressList(const ProgressList&) = delete;
  ProgressList& operator=(const ProgressList&) = delete;

  // Gives the list box its font and takes its messages. The object must outlive the window.
  void Attach(HWND list_box);
  HWND window() const { return window_; }
  // Deletes the font.
  void Release() { font_.Release(); }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void PressKey(WPARAM key);
  void PressMouse(LPARAM point);
  void MakeCurrent(LRESULT line);
  // What the list box itself does with a message.
  LRESULT Ask(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const;
  void ScrollTo(LRESULT line) const;
  LRESULT SetCurrentLine(WPARAM wparam);
  LRESULT CurrentLine() const;

  const WorkerThread& worker_;
  HWND window_ = nullptr;
  WNDPROC previous_procedure_ = nullptr;
  LRESULT refused_line_ = -1;  // the current line, if the list box does not know it
  OwnedFont font_;
};

}  // namespace hostscope
