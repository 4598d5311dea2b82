#include "delivery/open_report.h"

#include "platform/win32.h"
#include "util/paths.h"

namespace hostscope {

void OpenReport(const char* report_path) {
  const OwnedText path = FullPath(report_path);
  ShellExecuteA(nullptr, "open", path.c_str(), nullptr, nullptr, SW_SHOW);
}

}  // namespace hostscope
