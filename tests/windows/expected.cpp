#include "tests/windows/expected.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/windows/driver.h"

namespace drive {
namespace {

constexpr char kRule[] =
    "==========================================="
    "=========================================";
constexpr char kSystemTitle[] =
    "================================ SYSTEM INFORMATION ================================";

std::string HeaderAt(const SYSTEMTIME& time) {
  constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                     "May",       "June",     "July",     "August",
                                     "September", "October",  "November", "December"};
  char line[100];
  std::snprintf(line, sizeof(line), "Report generated on %02u %s %u %02u:%02u", time.wDay,
                kMonths[time.wMonth - 1], time.wYear, time.wHour, time.wMinute);
  return line;
}

std::string ComputerName() {
  char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
  DWORD size = sizeof(name);
  return GetComputerNameA(name, &size) ? name : "";
}

std::string LogonName() {
  char name[257] = {};
  DWORD size = sizeof(name);
  return GetUserNameA(name, &size) ? name : "";
}

std::string AccountName() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return "";
  alignas(TOKEN_USER) char record[1024];
  DWORD size = 0;
  const bool known = GetTokenInformation(token, TokenUser, record, sizeof(record), &size);
  CloseHandle(token);
  if (!known) return "";
  char name[512], domain[512];
  DWORD name_size = sizeof(name), domain_size = sizeof(domain);
  SID_NAME_USE kind;
  const bool found = LookupAccountSidA(nullptr, reinterpret_cast<TOKEN_USER*>(record)->User.Sid,
                                       name, &name_size, domain, &domain_size, &kind);
  return found ? name : "";
}

std::string LanguageName(LCTYPE type) {
  char name[256] = {};
  GetLocaleInfoA(LOCALE_USER_DEFAULT, type, name, sizeof(name));
  return name;
}

std::string FolderPath(UINT(WINAPI* ask)(char*, UINT)) {
  char path[MAX_PATH] = {};
  ask(path, MAX_PATH);
  return path;
}

std::string TempPathWithoutSeparator() {
  char path[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, path);
  std::string text = path;
  if (text.ends_with('\\')) text.pop_back();
  return text;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ReleaseCase& row) {
  return out << row.release;
}

const std::vector<ReleaseCase> kReleases = {
    {"win95", "Microsoft Windows 95 version 4.0.950 ", false},
    {"win98", "Microsoft Windows 98 SE version 4.10.2222  A ", false},
    {"winme", "Microsoft Windows Me version 4.90.3000  ", false},
    {"nt351", "Microsoft Windows NT 3.51 version 3.51.1057 Service Pack 5", true},
    {"nt40", "Microsoft Windows NT 4.0 Workstation version 4.0.1381 (Service Pack 6a)", true},
    {"win2k", "Microsoft Windows 2000 Professional version 5.0.2195 Service Pack 4", true},
    {"winxp", "Microsoft Windows XP Professional version 5.1.2600 Service Pack 3", true},
};

std::string ProfileWith(const std::string& general, const std::string& post_run) {
  std::string profile = "[GENERAL]\r\nSign=Hostscope INI file\r\n" + general + "\r\n[SYSTEM]\r\n";
  for (const SystemItem& item : kSystemItems)
    profile += std::string(item.key) + "=1\r\n";
  return profile + "[POST-RUN]\r\n" + post_run + "\r\n";
}

std::string Padded(const std::string& text, size_t width) {
  return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

std::string FieldLine(const std::string& label, const std::string& field,
                      const std::string& value) {
  return Padded(label, 27) + Padded(field, 15) + ":  " + value + "\r\n";
}

std::string Narrow(const wchar_t* text) {
  char narrow[1024] = {};
  WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);
  return narrow;
}

std::string ProgressLine(const char* progress, const char* status) {
  return Padded(progress, 25) + status;
}

std::vector<std::string> FinishedList() {
  std::vector<std::string> lines;
  for (const SystemItem& item : kSystemItems)
    lines.push_back(ProgressLine(item.progress, "Ok"));
  lines.insert(lines.end(), {"", kLastLine});
  return lines;
}

std::vector<std::string> ReportLines(const std::string& report) {
  std::vector<std::string> lines;
  size_t start = 0;
  for (size_t end; (end = report.find("\r\n", start)) != std::string::npos; start = end + 2)
    lines.push_back(report.substr(start, end - start));
  EXPECT_EQ(start, report.size()) << "the last line has no end";
  for (const std::string& line : lines)
    EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << "broken inside: " << line;
  return lines;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += line + "\r\n";
  return text;
}

Clock::Clock() : ticks_(GetTickCount()) {
  GetLocalTime(&time_);
}

bool Clock::IsHeader(const std::string& line) const {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  return line == HeaderAt(time_) || line == HeaderAt(now);
}

bool Clock::IsWorkingTime(const std::string& text) const {
  unsigned days = 0, hours = 0, minutes = 0, seconds = 0;
  if (std::sscanf(text.c_str(), "%u:%u:%u:%u", &days, &hours, &minutes, &seconds) != 4)
    return false;
  const bool plain = text == std::to_string(days) + ":" + std::to_string(hours) + ":" +
                                 std::to_string(minutes) + ":" + std::to_string(seconds);
  const unsigned whole = ((days * 24 + hours) * 60 + minutes) * 60 + seconds;
  return plain && hours < 24 && minutes < 60 && seconds < 60 && whole >= ticks_ / 1000 &&
         whole <= GetTickCount() / 1000;
}

std::vector<std::string> SystemBanner() {
  return {"", kRule, kSystemTitle, kRule, ""};
}

std::vector<std::string> SystemValues(const std::string& operating_system, bool has_tokens) {
  return {operating_system,
          "",
          ComputerName(),
          has_tokens ? AccountName() : LogonName(),
          LanguageName(LOCALE_SLANGUAGE) + " (" + LanguageName(LOCALE_SENGLANGUAGE) + ")",
          FolderPath(GetWindowsDirectoryA),
          FolderPath(GetSystemDirectoryA),
          TempPathWithoutSeparator()};
}

void ExpectSystemReport(const std::string& report, const Clock& clock,
                        const std::vector<std::string>& values) {
  std::vector<std::string> lines = ReportLines(report);
  std::vector<std::string> expected = SystemBanner();
  expected.insert(expected.begin(), lines.empty() ? "" : lines[0]);
  ASSERT_EQ(lines.size(), expected.size() + std::size(kSystemItems) + 1) << report;
  EXPECT_TRUE(clock.IsHeader(lines[0])) << lines[0];
  for (size_t n = 0; n < std::size(kSystemItems); ++n)
    expected.push_back(Padded(kSystemItems[n].label, 27) + values[n]);
  // An empty line stands for the network section, whose keys are all off.
  expected.push_back("");
  std::string& working_time = lines[1 + SystemBanner().size() + kWorkingTimeItem];
  EXPECT_TRUE(clock.IsWorkingTime(working_time.substr(std::min<size_t>(27, working_time.size()))))
      << working_time;
  working_time.resize(std::min<size_t>(27, working_time.size()));
  EXPECT_EQ(lines, expected);
}

}  // namespace drive
