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
  // What NT 4.0 keeps about itself in the registry.
  const auto product =
      RegistryValue::Text(HKEY_LOCAL_MACHINE, kProductOptions, "ProductType", "WINNT");
  const auto pack = RegistryValue::Number(HKEY_LOCAL_MACHINE, kWindowsKey, "CSDVersion", 0x600);
  const auto hotfix = RegistryValue::Number(HKEY_LOCAL_MACHINE, kHotfix, "Installed", 1);
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

}  // namespace
}  // namespace drive
