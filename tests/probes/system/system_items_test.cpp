// User, folders and working time, with folders that grow.

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "probes/system/folders.h"
#include "probes/system/user.h"
#include "probes/system/working_time.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using Collect = bool (*)(ProbeContext&, std::span<char>);
inline constexpr char kFailed[] = "(failed)";

class SystemItems : public testing::Test {
 protected:
  SystemItems() : use_(machine_) { test::DescribeWindows2000(machine_); }

  // The collected text, or kFailed. The area holds something else before.
  std::string Text(Collect collect) {
    ProbeContext context;
    text_.fill('#');
    return collect(context, text_) ? text_.data() : kFailed;
  }
  void BecomeWindows98() {
    machine_.version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
  }

  host::Machine machine_;
  host::UseMachine use_;
  std::array<char, 32767> text_ = {};
};

TEST(WorkingTime, Texts) {
  host::Machine machine;
  const host::UseMachine use(machine);
  constexpr std::pair<std::uint32_t, const char*> kRows[] = {
      {0, "0:0:0:0"},          {999, "0:0:0:0"},           {59'999, "0:0:0:59"},
      {60'000, "0:0:1:0"},     {3'600'000, "0:1:0:0"},     {86'399'999, "0:23:59:59"},
      {90'061'000, "1:1:1:1"}, {0xFFFFFFFF, "49:17:2:47"},
  };
  for (const auto& [milliseconds, expected] : kRows) {
    std::array<char, 64> text = {};
    FormatWorkingTimeOf(milliseconds, text);
    EXPECT_STREQ(text.data(), expected) << milliseconds;
  }
}

TEST_F(SystemItems, UserNameComesFromTheTokenOnNt) {
  machine_.user.name = "logon name";
  EXPECT_EQ(Text(ReadUserName), "jdoe");
  machine_.user.imitated = "visitor";
  EXPECT_EQ(Text(ReadUserName), "visitor");
  BecomeWindows98();
  EXPECT_EQ(Text(ReadUserName), "logon name");
}

TEST_F(SystemItems, Folders) {
  const struct {
    Collect collect;
    const char* call;
    std::string host::Machine::*fact;
    const char* path;
    const char* expected;
  } rows[] = {
      {ReadWindowsFolder, "GetWindowsDirectoryA", &host::Machine::windows_folder, "C:\\WINNT",
       "C:\\WINNT"},
      {ReadSystemFolder, "GetSystemDirectoryA", &host::Machine::system_folder, "D:\\WIN\\SYSTEM",
       "D:\\WIN\\SYSTEM"},
      {ReadTempFolder, "GetTempPathA", &host::Machine::temp_folder, "C:\\TEMP\\", "C:\\TEMP"},
      {ReadTempFolder, "GetTempPathA", &host::Machine::temp_folder, "C:\\", "C:"},
      {ReadTempFolder, "GetTempPathA", &host::Machine::temp_folder, "C:\\TEMP", "C:\\TEMP"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    machine_.*row.fact = row.path;
    EXPECT_EQ(Text(row.collect), row.expected);
    // The path grows between the two questions.
    int questions = 0;
    machine_.faults.AtCall(row.call, [&] {
      if (++questions == 2) machine_.*row.fact += "\\AND\\SOME\\MORE";
    });
    EXPECT_EQ(Text(row.collect), kFailed);
    machine_.faults.AtCall(row.call, nullptr);
  }
}

}  // namespace
}  // namespace hostscope
