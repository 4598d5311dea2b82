#include "tests/support/report_run.h"

namespace hostscope::test {

void DescribeWindows2000(host::Machine& machine) {
  machine.version = {.major = 5,
                     .minor = 0,
                     .build = 2195,
                     .platform_id = VER_PLATFORM_WIN32_NT,
                     .service_pack_text = "Service Pack 4",
                     .product_type = 1};
  machine.tick_count = 90'061'000;
  machine.computer_name = "WORKSTATION7";
  machine.user = {.name = "jdoe", .account = "jdoe", .domain = "OFFICE", .imitated = {}};
  machine.locale = {.language = "Deutsch (Deutschland)", .english_language = "German"};
  machine.windows_folder = "C:\\WINNT";
  machine.system_folder = "C:\\WINNT\\system32";
  machine.temp_folder = "C:\\TEMP\\";
}

ReportRun::ReportRun() : use_(machine_) {
  DescribeWindows2000(machine_);
  list_ = CreateWindowExA(0, "LISTBOX", "", LBS_NOINTEGRALHEIGHT, 0, 0, 200, 200, nullptr, nullptr,
                          nullptr, nullptr);
  state_->program_folder = DuplicateText(folder_.path().c_str());
  state_->profile_path = DuplicateText(folder_.PathOf("test.ini").c_str());
  state_->report_path = DuplicateText(folder_.PathOf("report.txt").c_str());
}

ReportRun::~ReportRun() {
  DestroyWindow(list_);
}

void ReportRun::Run(std::string_view profile) {
  folder_.Write("test.ini", profile);
  ProgressLines progress(list_);
  ReportWorker(*state_, *settings_, progress);
}

std::string ReportRun::SqueezedSection() const {
  std::string text;
  for (const char character : LastSection()) {
    if (character == '\n') text += '|';
    if (character != '\n' && character != '\r' && !(character == ' ' && text.ends_with(' ')))
      text += character;
  }
  return text;
}

}  // namespace hostscope::test
