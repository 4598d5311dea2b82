#pragma once

#include "platform/win32.h"

namespace hostscope {

// The list in which the dialog shows the run. Lines are only added and removed at the end. The
// calls may come from any thread: the dialog's thread carries each out before it returns.
class ProgressLines {
 public:
  explicit ProgressLines(HWND progress_list) : list_(progress_list) {}

  // Appends the text as the last line and makes it the current one, so that it shows. A line that
  // the list refuses is lost.
  void AddProgressLine(const char* text);
  void RemoveLastProgressLine();
  // Puts the label with its status word ("Ok", "Failed") in the place of the last line.
  void ReplaceWithStatus(const char* label, const char* status);

 private:
  HWND list_;
};

}  // namespace hostscope
