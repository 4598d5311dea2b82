// A run from its start to its end: the list and the report.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"
#include "tests/windows/expected.h"

namespace drive {
namespace {

constexpr char kProductOptions[] = "SYSTEM\\CurrentControlSet\\Control\\ProductOptions";
constexpr char kWindowsKey[] = "SYSTEM\\CurrentControlSet\\Control\\Windows";
constexpr char kHotfix[] = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Hotfix\\Q246009";

// What NT 4.0 keeps about itself in the registry.
struct Nt4Facts {
  Nt4Facts(const char* product_type, DWORD service_pack, DWORD hotfix)
      : product(
            RegistryValue::Text(HKEY_LOCAL_MACHINE, kProductOptions, "ProductType", product_type)),
        pack(RegistryValue::Number(HKEY_LOCAL_MACHINE, kWindowsKey, "CSDVersion", service_pack)),
        installed(RegistryValue::Number(HKEY_LOCAL_MACHINE, kHotfix, "Installed", hotfix)) {}
  RegistryValue product, pack, installed;
};

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA entry;
  const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::string name = entry.cFileName;
    if (name != "." && name != "..") names.push_back(name);
  } while (FindNextFileA(search, &entry));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

class RunOnEveryRelease : public EveryRelease {};

TEST_P(RunOnEveryRelease, ReportsTheSystem) {
  const Nt4Facts facts("WINNT", 0x600, 1);
  const Folder folder;
  const std::string profile = ProfileWith("");
  folder.Write("any name.ini", profile);
  folder.Write("hscope.txt", std::string(100000, '?'));
  const Clock clock;
  Program program(folder);
  ASSERT_TRUE(program.WaitUntilFinished());
  EXPECT_EQ(program.Lines(), FinishedList());
  EXPECT_EQ(program.CurrentLine(), 9);
  TypeKey(program.dialog(), 'X');
  EXPECT_EQ(program.WaitForExit(), 0u);
  ExpectSystemReport(folder.Read("hscope.txt").value_or(""), clock,
                     SystemValues(GetParam().operating_system, GetParam().has_tokens));
  EXPECT_EQ(folder.Read("any name.ini"), profile);
  EXPECT_EQ(NamesIn(folder.path()),
            (std::vector<std::string>{"any name.ini", "hscope.exe", "hscope.txt"}));
}

INSTANTIATE_TEST_SUITE_P(Run, RunOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

TEST(OperatingSystem, IsNamedAfterVersionAndRegistry) {
  struct Row {
    const char* release;
    const char* product_type;
    DWORD service_pack;
    DWORD hotfix;
    const char* expected;
  };
  const Row rows[] = {
      {"nt40", "SERVERNT", 0x600, 0,
       "Microsoft Windows NT 4.0 Server version 4.0.1381 Service Pack 6"},
      {"nt40", "lanmannt", 0x300, 1,
       "Microsoft Windows NT 4.0 Server - Domain controller version 4.0.1381 Service Pack 3"},
      {"nt40", "WinNT", 0x700, 1,
       "Microsoft Windows NT 4.0 Workstation version 4.0.1381 Service Pack 6a"},
      {"nt40", "other", 0x100, 0, "Microsoft Windows NT 4.0 version 4.0.1381 Service Pack 1"},
      {"win2003", "WINNT", 0x100, 0, " Server version 5.2.3790 Service Pack 2"},
      {"vista", "WINNT", 0x100, 0, " Professional version 6.0.6002 Service Pack 2"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.expected);
    const Nt4Facts facts(row.product_type, row.service_pack, row.hotfix);
    const Release release(row.release);
    const Folder folder;
    const auto lines = ReportLines(ReportOf(folder, "[SYSTEM]\r\nWindowsVersion=1\r\n"));
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[6], "Operating system           " + std::string(row.expected));
  }
}

TEST(Sections, AreWrittenOnlyWhenSwitchedOn) {
  struct Row {
    const char* profile;
    std::vector<std::string> labels;
    bool banner;
  };
  const Row rows[] = {
      {"[GENERAL]\r\nSign=Hostscope INI file\r\n", {}, false},
      {"[SYSTEM]\r\nTempFolder=0\r\nComputerName=0\r\n[DLLS]\r\n[FOLDERS]\r\n", {}, false},
      {"[NETWORK]\r\nNetProtocols=1\r\n", {}, false},
      {"[system]\r\ntempfolder=-1\r\n", {"Temp folder"}, true},
      {"[SYSTEM]\r\nSystemFolder=7\r\nTempFolder=0\r\n", {"System folder"}, true},
      {"[SYSTEM]\r\nUserName=1\r\nComputerName=1\r\n", {"Computer name", "User name"}, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.profile);
    const Folder folder;
    const Clock clock;
    auto lines = ReportLines(ReportOf(folder, row.profile));
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(clock.IsHeader(lines[0])) << lines[0];
    std::vector<std::string> expected;
    if (row.banner) expected = SystemBanner();
    if (!row.banner) expected.push_back("");
    for (const std::string& label : row.labels)
      expected.push_back(Padded(label, 27));
    expected.push_back("");
    lines.erase(lines.begin());
    for (size_t n = 5; n < lines.size(); ++n)
      lines[n].resize(std::min<size_t>(27, lines[n].size()));
    EXPECT_EQ(lines, expected);
  }
}

TEST(TempFolder, LosesOneSeparator) {
  const EnvironmentVariable variable("TMP", "C:\\");
  const Folder folder;
  const auto lines = ReportLines(ReportOf(folder, "[SYSTEM]\r\nTempFolder=1\r\n"));
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[6], "Temp folder                C:");
}

// A failed item leaves its label alone on its line, and the run goes on.
TEST(FailedItems, ShowTheFailureAndNothingElse) {
  for (const bool has_tokens : {false, true}) {
    const Release release(has_tokens ? "win2k" : "win98");
    SCOPED_TRACE(has_tokens);
    FailedCall computer("GetComputerNameA", 2, ERROR_BUFFER_OVERFLOW);
    FailedCall user("GetUserNameA", 2, ERROR_ACCESS_DENIED);
    FailedCall locale("GetLocaleInfoA", 4, ERROR_INVALID_FLAGS);
    FailedCall windows("GetWindowsDirectoryA", 2, ERROR_INVALID_FUNCTION);
    FailedCall system("GetSystemDirectoryA", 2, ERROR_INVALID_FUNCTION);
    FailedCall temp("GetTempPathA", 2, ERROR_INVALID_FUNCTION);
    const Folder folder;
    const Clock clock;
    std::vector<std::string> list;
    const std::string report = ReportOf(
        folder, ProfileWith(""), {&computer, &user, &locale, &windows, &system, &temp}, &list);
    auto values = SystemValues(
        has_tokens ? kReleases[5].operating_system : kReleases[1].operating_system, has_tokens);
    auto expected_list = FinishedList();
    for (size_t n = 2; n < values.size(); ++n) {
      if (n == 3 && has_tokens) continue;  // the account's name comes from the token
      values[n].clear();
      expected_list[n] = ProgressLine(kSystemItems[n].progress, "Failed");
    }
    ExpectSystemReport(report, clock, values);
    EXPECT_EQ(list, expected_list);
  }
}

// Without a token the name comes from the logon, also in the NT family.
TEST(FailedItems, UserNameHasASecondSource) {
  const Release release("winxp");
  FailedCall token("OpenThreadToken", 4, ERROR_ACCESS_DENIED);
  FailedCall lookup("LookupAccountSidA", 7, ERROR_NONE_MAPPED);
  for (Interception* failure :
       {static_cast<Interception*>(&token), static_cast<Interception*>(&lookup)}) {
    const Folder folder;
    const auto lines = ReportLines(ReportOf(folder, "[SYSTEM]\r\nUserName=1\r\n", {failure}));
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[6], "User name                  " + SystemValues("", false)[3]);
  }
}

TEST(OperatingSystem, FailsWithoutAVersionRecord) {
  const Release release("win2k");
  const Folder folder;
  FailedCall version("GetVersionExA", 1, ERROR_INSUFFICIENT_BUFFER);
  std::vector<std::string> list;
  const auto lines =
      ReportLines(ReportOf(folder, "[SYSTEM]\r\nWindowsVersion=1\r\n", {&version}, &list));
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[6], "Operating system           ");
  EXPECT_EQ(list[0], "Windows version...       Failed");
}

}  // namespace
}  // namespace drive
