// What the program has to show and to write, worked out by the tests themselves: fixed texts, and
// the machine's facts asked for a second time, by other code.
#pragma once

#include <windows.h>

#include <ostream>
#include <string>
#include <vector>

namespace drive {

struct ReleaseCase {
  const char* release;           // as Release takes it
  const char* operating_system;  // the text of the operating system item
  bool has_tokens;               // of the NT family
};
std::ostream& operator<<(std::ostream& out, const ReleaseCase& row);

// The seven releases. NT 4.0 is named after what MakeServicePack6a writes into the registry.
extern const std::vector<ReleaseCase> kReleases;

struct SystemItem {
  const char* key;
  const char* progress;
  const char* label;
};
inline constexpr SystemItem kSystemItems[] = {
    {"WindowsVersion", "Windows version...", "Operating system"},
    {"WorkingTime", "Windows working time...", "Working time (d.h.m.s)"},
    {"ComputerName", "Computer name...", "Computer name"},
    {"UserName", "User name...", "User name"},
    {"UserLocale", "User locale...", "User locale"},
    {"WindowsFolder", "Windows folder...", "Windows folder"},
    {"SystemFolder", "System folder...", "System folder"},
    {"TempFolder", "Temp folder...", "Temp folder"},
};
inline constexpr int kWorkingTimeItem = 1;

// A profile that FindProfile takes, with the eight items on; further keys of its sections can be
// added.
std::string ProfileWith(const std::string& general, const std::string& post_run = "");

// The text, filled up with blanks on the right.
std::string Padded(const std::string& text, size_t width);
// "%-27s%-15s:  %s" and the line's end.
std::string FieldLine(const std::string& label, const std::string& field, const std::string& value);
// In the system's code page.
std::string Narrow(const wchar_t* text);
// "%-25s%s"
std::string ProgressLine(const char* progress, const char* status);
// The finished list of a run with all eight items, each of them Ok.
std::vector<std::string> FinishedList();

// The lines of a report; a test failure when one does not end with a carriage return and a line
// feed, or when either stands alone.
std::vector<std::string> ReportLines(const std::string& report);
std::string Joined(const std::vector<std::string>& lines);

// Remembers when it was made, and knows what the times written since then look like.
class Clock {
 public:
  Clock();
  bool IsHeader(const std::string& line) const;
  // Days, hours, minutes and seconds since the system started.
  bool IsWorkingTime(const std::string& text) const;

 private:
  SYSTEMTIME time_ = {};
  DWORD ticks_ = 0;
};

// The empty line, the banner and the empty line before the first item.
std::vector<std::string> SystemBanner();
// The value of each item, the working time's left empty.
std::vector<std::string> SystemValues(const std::string& operating_system, bool has_tokens);
// Checks a whole report of the eight items.
void ExpectSystemReport(const std::string& report, const Clock& clock,
                        const std::vector<std::string>& values);

}  // namespace drive
