// One run of the report worker over a machine built in code, with a list box to show its progress.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/host/machine.h"
#include "platform/win32.h"
#include "report/report_worker.h"
#include "tests/support/test_folder.h"

namespace hostscope::test {

// A Windows 2000 Professional with a user, a locale and its folders.
void DescribeWindows2000(host::Machine& machine);

class ReportRun {
 public:
  ReportRun();
  ~ReportRun();
  ReportRun(const ReportRun&) = delete;
  ReportRun& operator=(const ReportRun&) = delete;

  host::Machine& machine() { return machine_; }
  TestFolder& folder() { return folder_; }
  RunState& state() { return *state_; }
  ProfileSettings& settings() { return *settings_; }

  // Writes the profile, runs the worker with the report going to report.txt in the folder.
  void Run(std::string_view profile);
  std::string Report() const { return folder_.Read("report.txt"); }
  // What stands below the last banner and its empty line.
  std::string LastSection() const {
    const std::string report = Report();
    const std::size_t rule = report.rfind("=\r\n\r\n");
    return rule == std::string::npos ? "no banner" : report.substr(rule + 5);
  }
  // The same with runs of blanks made one and each line ended by "|".
  std::string SqueezedSection() const;
  std::vector<std::string> Progress() const { return machine_.desktop.ListLines(list_); }

 private:
  host::Machine machine_;
  host::UseMachine use_;
  TestFolder folder_;
  HWND list_;
  std::unique_ptr<RunState> state_ = std::make_unique<RunState>();
  std::unique_ptr<ProfileSettings> settings_ = std::make_unique<ProfileSettings>();
};

}  // namespace hostscope::test
