// Everything that the program can report, in one run of each release, beside the kept report: in
// tests/reports/wine.txt a "*" stands for any text within a line, and a line that begins with "9x>
// " or "nt> " is there on that family alone.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

// The lists of the profile, behind the switches of the one that asks for everything.
constexpr char kLists[] =
    "[DLLS]\r\nv_both.dll\r\nnosuch.dll\r\n"
    "[REGISTRY KEYS]\r\nHKCU\\Software\\Hostscope whole\r\nHKCU\\Software\\Hostscope none,1\r\n"
    "[SCAN KEYS]\r\nHKCU\\Software\\Hostscope whole,0,1\r\n"
    "[FOLDERS]\r\nC:\\nosuch\r\n"
    "[CUSTOM DLLS]\r\nnosuch.dll,Write\r\nsample.dll,WriteConfigurationFiles\r\n";
constexpr char kKey[] = "Software\\Hostscope whole";

// Whether the line is the pattern with something for each "*" of it.
bool Fits(std::string_view pattern, std::string_view line) {
  if (pattern.empty() || pattern.front() != '*')
    return pattern.empty() ? line.empty()
                           : !line.empty() && line.front() == pattern.front() &&
                                 Fits(pattern.substr(1), line.substr(1));
  return Fits(pattern.substr(1), line) || (!line.empty() && Fits(pattern, line.substr(1)));
}

std::vector<std::string> KeptLines(bool is_nt) {
  const auto kept = ReadFileBytes(HOSTSCOPE_REPORTS_FOLDER "/wine.txt");
  std::vector<std::string> lines;
  for (const std::string& line : ReportLines(kept.value_or(""))) {
    const std::string family = line.substr(0, 4);
    if (family == "9x> " || family == "nt> ") {
      if ((family == "nt> ") == is_nt) lines.push_back(line.substr(4));
    } else {
      lines.push_back(line);
    }
  }
  return lines;
}

// Where the list begins, and where what stands behind it does.
auto FindList(std::vector<std::string>& lines, const std::string& name) {
  const std::string blanks(27, ' ');
  const auto begin = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.starts_with(name + " (total ");
  });
  const auto end = std::find_if(
      begin + (begin == lines.end() ? 0 : 1), lines.end(),
      [&](const std::string& line) { return !line.empty() && !line.starts_with(blanks); });
  return std::pair(begin, end);
}

// Which processes run differs: the first one stays.
void DropFurtherProcesses(std::vector<std::string>& lines) {
  const auto [begin, end] = FindList(lines, "Processes");
  const auto behind_first = std::find(begin, end, "");
  if (behind_first != end) lines.erase(behind_first + 1, end);
}

// NT 3.51 and 4.0 list those of the computer that Wine runs on: the label stays.
void DropNetCards(std::vector<std::string>& lines) {
  const auto [begin, end] = FindList(lines, "Net cards");
  if (begin == end) return;
  begin->resize(begin->find(')') + 1);
  lines.erase(begin + 1, end);
}

class WholeReport : public EveryRelease {};

TEST_P(WholeReport, IsAsKept) {
  const Folder folder;
  for (const char* name : {"v_both.dll", "sample.dll"})
    folder.CopyFromBuild(name);
  folder.MakeFolder("Data");
  folder.Write("Data\\One.txt", "three");
  const RegistryValue where =
      RegistryValue::Text(HKEY_CURRENT_USER, kKey, "Data", folder.Path("Data") + "\\");
  const RegistryValue number = RegistryValue::Number(HKEY_CURRENT_USER, kKey, "Number", 10);
  const std::string full = ReadFileBytes(HOSTSCOPE_FULL_PROFILE).value_or("");
  std::vector<std::string> lines =
      ReportLines(ReportOf(folder, full.substr(0, full.find("[DLLS]")) + kLists));
  DropNetCards(lines);
  DropFurtherProcesses(lines);
  const std::vector<std::string> kept = KeptLines(GetParam().has_tokens);
  ASSERT_FALSE(kept.empty());
  for (size_t i = 0; i < std::max(lines.size(), kept.size()); ++i) {
    const std::string line = i < lines.size() ? lines[i] : "(no line)";
    const std::string pattern = i < kept.size() ? kept[i] : "(no line)";
    ASSERT_TRUE(Fits(pattern, line)) << "line " << i + 1 << " is    " << line << "\nkept is      "
                                     << pattern << "\nwhole report:\n"
                                     << Joined(lines);
  }
}

INSTANTIATE_TEST_SUITE_P(Run, WholeReport, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
