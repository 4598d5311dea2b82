#include "delivery/open_report.h"

#include "platform/win32.h"
#include "util/paths.h"

namespace hostscope {

void OpenReport(const char* report_path) {
  const OwnedText path = FullPath(report_path);
  // Nothing to open would open the current folder.
  const char* const target = path.present() ? path.c_str() : report_path;
  ShellExecuteA(nullptr, "open", target, nullptr, nullptr, SW_SHOW);
}

}  // namespace hostscope
