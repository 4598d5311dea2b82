#pragma once

#include <string>

#include "tests/support/report_run.h"

namespace hostscope::test {

// Runs keys of the section SYSTEM ("A=1\r\nB=1\r\n"): the values behind the 27 columns of the
// labels, each ended by "|", and "Failed" behind them when an item's progress line says so.
inline std::string SystemValues(ReportRun& run, const std::string& keys) {
  run.Run("[SYSTEM]\r\n" + keys);
  const std::string report = run.Report();
  std::string values;
  // Behind the items stands the empty line of the network section.
  for (std::size_t at = report.rfind("=\r\n\r\n") + 5; at + 2 < report.size();) {
    const std::size_t end = report.find("\r\n", at);
    values += report.substr(at + 27, end - at - 27) + "|";
    at = end + 2;
  }
  const std::string last = run.Progress().back();
  return values + (last.ends_with("Failed") ? "Failed" : "");
}

}  // namespace hostscope::test
