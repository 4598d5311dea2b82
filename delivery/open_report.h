#pragma once

namespace hostscope {

// Has the shell open the finished report with the application that the system keeps for its kind
// of file. Nothing says whether there is one.
void OpenReport(const char* report_path);

}  // namespace hostscope
