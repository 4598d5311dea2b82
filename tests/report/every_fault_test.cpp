// Every platform call of every item of the report made to fail, one at a time: what the item makes
// of it stands in faults.tsv, one line for each outcome with all the faults that lead to it. The
// item behind it must not be touched, and nothing may stay open.
//
// With RENEW_FAULTS=1 in the environment the file is written anew; read the difference.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "platform/host/code_page.h"
#include "platform/host/machine_folder.h"
#include "profile/read_profile.h"
#include "report/section_table.h"
#include "tests/support/test_folder.h"

namespace hostscope {
namespace {

namespace fs = std::filesystem;

const fs::path kSources = HOSTSCOPE_SOURCE_FOLDER;
const fs::path kKept = kSources / "tests/report/faults.tsv";
// The calls of a function that fail singly; then all of them do.
constexpr unsigned kMostCalls = 3;
constexpr unsigned kAlways = 0;

// Calls that give something back, that cannot fail, or by which the item is shown and written.
const std::set<std::string> kSpared = {"CallWindowProcA",
                                       "CloseHandle",
                                       "ClosePrinter",
                                       "WSACleanup",
                                       "CoUninitialize",
                                       "DeleteDC",
                                       "DeleteObject",
                                       "DefWindowProcA",
                                       "FindClose",
                                       "FreeLibrary",
                                       "GetCurrentProcessId",
                                       "GetCurrentThreadId",
                                       "GetProcessHeap",
                                       "GetSystemInfo",
                                       "GetTickCount",
                                       "GetCurrentProcess",
                                       "GetCurrentThread",
                                       "CharLowerA",
                                       "CharUpperA",
                                       "ReadTimeStampCounter",
                                       "GetSystemMetrics",
                                       "HeapFree",
                                       "ICClose",
                                       "LB_ADDSTRING",
                                       "LB_DELETESTRING",
                                       "LB_GETCOUNT",
                                       "LB_SETCURSEL",
                                       "RegCloseKey",
                                       "ReleaseDC",
                                       "SendMessageA",
                                       "SetErrorMode",
                                       "SetupDiDestroyDeviceInfoList",
                                       "Sleep",
                                       "VirtualFree",
                                       "WriteFile",
                                       "lstrcmpA",
                                       "lstrcmpiA",
                                       "timeGetTime",
                                       "wsprintfA",
                                       "wvsprintfA"};

DWORD TypicalError(std::string_view function) {
  if (function.find("::") != function.npos || function.starts_with("Direct") ||
      function.starts_with("Co") || function == "DllGetVersion")
    return 0x80004005;
  if (function.starts_with("Heap") || function.starts_with("Virtual"))
    return ERROR_NOT_ENOUGH_MEMORY;
  return ERROR_ACCESS_DENIED;
}

struct Place {
  const Section* section;
  std::size_t index;
  const Item& item() const { return section->items[index]; }
  std::string Name() const {
    if (item().progress_label != nullptr) return item().progress_label;
    const std::string banner = section->banner == nullptr ? "SCAN KEYS" : section->banner;
    return banner + (item().step == nullptr ? "" : ", step " + std::to_string(index));
  }
};

// What came of an item and of the one behind it.
struct Outcome {
  std::string text;
  std::string status;
  std::string next_text;
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    line.erase(line.find_last_not_of(" \r") + 1);
    lines.push_back(line);
  }
  return lines;
}

// The lines that are not in the sound text (of many the first ones), and how many of its lines are
// missing.
std::string Difference(const std::string& sound, const std::string& text) {
  constexpr std::size_t kMostLines = 3;
  std::vector<std::string> missing = Lines(sound);
  std::string difference;
  std::size_t added = 0;
  for (const std::string& line : Lines(text)) {
    const auto same = std::find(missing.begin(), missing.end(), line);
    if (same != missing.end()) {
      missing.erase(same);
    } else if (++added <= kMostLines) {
      difference += "+" + line + "|";
    }
  }
  if (added > kMostLines) difference += "+" + std::to_string(added - kMostLines) + " lines|";
  if (missing.size() == 1) difference += "-" + missing[0];
  if (missing.size() > 1) difference += "-" + std::to_string(missing.size()) + " lines";
  // The same lines in another order, or with other blanks behind them.
  return difference.empty() && sound != text ? "moved" : difference;
}

class FaultRun {
 public:
  explicit FaultRun(const std::string& machine) : use_(machine_) {
    const auto error = host::LoadMachine(kSources / "machines" / machine, machine_);
    if (error) ADD_FAILURE() << error->Text();
    Read(settings_);
    started_ = machine_.tick_count;
    for (const Section& section : SectionTable()) {
      for (std::size_t i = 0; i < section.items.size(); ++i)
        places_.push_back({&section, i});
    }
  }

  const std::vector<Place>& places() const { return places_; }

  // The item with the call failing, all steps of its section around it and the next item behind.
  Outcome Of(const Place& place, const std::string& function, unsigned call) {
    const auto before = machine_.handles.OpenObjects();
    Outcome outcome;
    {
      // The scan of keys adds to the list of folders.
      ProfileSettings own;
      if (place.section->list != nullptr) Read(own);
      ProfileSettings& settings = place.section->list != nullptr ? own : settings_;
      const ListBox list;
      ProgressLines progress(list.window);
      ReportWriter report((folder_.path() / "report.txt").c_str());
      ProbeContext context;
      const std::string here = folder_.path().string();
      ItemRun run{here.c_str(), settings, context, report, progress, work_};
      RunSteps(*place.section, 0, place.index, run);
      const std::size_t begin = Written(report);
      const auto counts = machine_.faults.CallCounts();
      // A clock that stood still would be read for minutes by whoever measures by it.
      machine_.faults.AtCall("GetTickCount", [this] {
        ++machine_.tick_count;
        ++machine_.hardware.timer;  // the processor's counter goes by it
      });
      if (!function.empty()) State(function, call);
      RunItem(place.item(), run);
      machine_.faults.Forget();
      machine_.tick_count = started_;
      const std::size_t end = Written(report);
      CountCalls(counts);
      outcome.status = LastLine(list, place.item());
      RunItem(NextTo(place), run);
      RunSteps(*place.section, place.index + 1, place.section->items.size(), run);
      report.Close();
      const std::string written = folder_.Read("report.txt");
      outcome.text = written.substr(begin, end - begin);
      outcome.next_text = written.substr(end);
    }
    EXPECT_EQ(machine_.handles.OpenObjects(), before)
        << place.Name() << ", " << function << " " << call;
    return outcome;
  }
  // Those of the last run of an item.
  const std::map<std::string, unsigned>& calls() const { return calls_; }

 private:
  struct ListBox {
    HWND window = CreateWindowExA(0, "LISTBOX", "", LBS_NOINTEGRALHEIGHT, 0, 0, 200, 200, nullptr,
                                  nullptr, nullptr, nullptr);
    ~ListBox() { DestroyWindow(window); }
  };
  void Read(ProfileSettings& settings) {
    CreateLists(settings);
    ReadProfile((kSources / "profiles/full.ini").c_str(), ReadMoment::kWorker, settings, work_);
  }
  void State(const std::string& function, unsigned call) {
    if (call == kAlways) {
      machine_.faults.FailAlways(function, TypicalError(function));
    } else {
      machine_.faults.FailNth(function, call, TypicalError(function));
    }
  }
  void CountCalls(const std::map<std::string, unsigned>& before) {
    calls_.clear();
    for (const auto& [function, count] : machine_.faults.CallCounts()) {
      const auto found = before.find(function);
      const unsigned calls = count - (found == before.end() ? 0 : found->second);
      if (calls != 0 && !kSpared.contains(function)) calls_[function] = calls;
    }
  }
  static void RunSteps(const Section& section, std::size_t begin, std::size_t end, ItemRun& run) {
    for (std::size_t i = begin; i < end; ++i) {
      if (section.items[i].step != nullptr) RunItem(section.items[i], run);
    }
  }
  std::size_t Written(ReportWriter& report) const {
    report.Flush();
    return fs::file_size(folder_.path() / "report.txt");
  }
  // The status word, or the whole line of an item that shows its own.
  std::string LastLine(const ListBox& list, const Item& item) const {
    const auto lines = machine_.desktop.ListLines(list.window);
    if (lines.empty() || item.step != nullptr) return "";
    return item.progress_label == nullptr ? lines.back() : lines.back().substr(25);
  }
  const Item& NextTo(const Place& place) const {
    auto next = std::find_if(places_.begin(), places_.end(), [&](const Place& other) {
      return other.section == place.section && other.index == place.index;
    });
    do {
      if (++next == places_.end()) next = places_.begin();
    } while (next->item().step != nullptr);
    return next->item();
  }

  host::Machine machine_;
  host::UseMachine use_;
  test::TestFolder folder_;
  ProfileSettings settings_;
  DWORD started_ = 0;
  std::vector<char> work_ = std::vector<char>(32767);
  std::vector<Place> places_;
  std::map<std::string, unsigned> calls_;
};

// The faults of one function that have one outcome: "1-3 always".
std::string Calls(const std::vector<unsigned>& calls) {
  std::string text;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    std::size_t last = i;
    while (last + 1 < calls.size() && calls[last + 1] == calls[last] + 1)
      ++last;
    text += calls[i] == kAlways ? " always" : " " + std::to_string(calls[i]);
    if (last != i) text += "-" + std::to_string(calls[last]);
    i = last;
  }
  return text;
}

// A line for each outcome of the item: status, difference, faults.
std::vector<std::string> LinesOf(FaultRun& run, const std::string& machine, const Place& place) {
  const Outcome sound = run.Of(place, "", 0);
  std::map<std::string, std::map<std::string, std::vector<unsigned>>> outcomes;
  const std::map<std::string, unsigned> functions = run.calls();
  for (const auto& [function, count] : functions) {
    std::vector<unsigned> calls;
    for (unsigned call = 1; call <= std::min(count, kMostCalls); ++call)
      calls.push_back(call);
    calls.push_back(kAlways);
    for (const unsigned call : calls) {
      const Outcome outcome = run.Of(place, function, call);
      std::string key = outcome.status + "\t" + Difference(sound.text, outcome.text);
      const std::string next = Difference(sound.next_text, outcome.next_text);
      if (!next.empty()) key += " next: " + next;
      outcomes[key][function].push_back(call);
    }
  }
  std::vector<std::string> lines;
  for (const auto& [outcome, faults] : outcomes) {
    std::string line = machine + "\t" + place.Name() + "\t" + outcome + "\t";
    for (const auto& [function, calls] : faults)
      line += (line.back() == '\t' ? "" : "; ") + function + Calls(calls);
    lines.push_back(host::Utf8FromCodePage(line));
  }
  return lines;
}

TEST(EveryFault, HasTheOutcomeThatIsKept) {
  std::vector<std::string> came;
  for (const char* const machine : {"winxp", "nt40", "win98se"}) {
    FaultRun run(machine);
    for (const Place& place : run.places()) {
      const auto lines = LinesOf(run, machine, place);
      came.insert(came.end(), lines.begin(), lines.end());
    }
  }
  if (std::getenv("RENEW_FAULTS") != nullptr) {
    std::ofstream file(kKept);
    for (const std::string& line : came)
      file << line << "\n";
  }
  std::ifstream file(kKept);
  std::set<std::string> kept;
  for (std::string line; std::getline(file, line);)
    kept.insert(line);
  for (const std::string& line : came)
    EXPECT_EQ(kept.erase(line), 1u) << "came:\n" << line;
  for (const std::string& line : kept)
    ADD_FAILURE() << "kept, and did not come:\n" << line;
}

}  // namespace
}  // namespace hostscope
