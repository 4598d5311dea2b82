#include "report/progress_lines.h"

#include "util/text.h"

namespace hostscope {

void ProgressLines::AddProgressLine(const char* text) {
  const LRESULT index = SendMessageA(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
  if (index >= 0) SendMessageA(list_, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

void ProgressLines::RemoveLastProgressLine() {
  const LRESULT count = SendMessageA(list_, LB_GETCOUNT, 0, 0);
  if (count > 0) SendMessageA(list_, LB_DELETESTRING, static_cast<WPARAM>(count - 1), 0);
}

void ProgressLines::ReplaceWithStatus(const char* label, const char* status) {
  char line[kFormattedSize + 1] = {};
  wsprintfA(line, "%-25s%s", label, status);
  EndFormatted(line);
  RemoveLastProgressLine();
  AddProgressLine(line);
}

}  // namespace hostscope
