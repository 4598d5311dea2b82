// The items of SYSTEM INFORMATION as a run writes them.
#pragma once

#include <sstream>
#include <string>

#include "tests/support/report_run.h"

namespace hostscope::test {

// Runs the keys (parted by blanks) of the section SYSTEM; the lines that their items write, each
// ended by "\n", and behind them the lines of the progress list in brackets.
inline std::string SystemLines(ReportRun& run, const std::string& keys) {
  std::string profile = "[SYSTEM]\r\n";
  std::istringstream words(keys);
  for (std::string key; words >> key;)
    profile += key + "=1\r\n";
  const std::size_t before = run.Progress().size();
  run.Run(profile);
  const std::string report = run.Report();
  const std::string banner_end = "=\r\n\r\n";
  const std::size_t begin = report.rfind(banner_end) + banner_end.size();
  std::string lines;
  // Behind the items stands the empty line of the network section.
  for (const char c : report.substr(begin, report.size() - begin - 2)) {
    if (c != '\r') lines += c;
  }
  const auto progress = run.Progress();
  for (std::size_t i = before; i < progress.size(); ++i)
    lines += "[" + progress[i] + "]";
  return lines;
}

}  // namespace hostscope::test
