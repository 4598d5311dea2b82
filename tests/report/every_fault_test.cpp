// Every platform call of every item of the report made to fail, one at a time: what the item makes
// of it stands in tests/reports/faults.tsv. The item behind it must not be touched, and nothing may
// stay open.
//
// A line of the file is an outcome with all the faults that lead to it: machine, item, status, how
// the item's lines differ from those of a sound run, faults. Outcomes that differ alike in lines of
// the same fields, as when the call for another device of a list fails, share a line, which shows
// the first of them. A number in brackets stands for all that the line leaves out.
//
// With RENEW_FAULTS=1 in the environment the file is written anew; read the difference.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
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
const fs::path kKept = kSources / "tests/reports/faults.tsv";
// The calls of a function that fail singly; then all of them do.
constexpr unsigned kMostCalls = 40;
// Of them, behind which the next item is looked at, too.
constexpr unsigned kCallsWithNext = 3;
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
  // The item and all that is made ready for a run before the first one.
  bool with_start = false;

  const Item& item() const { return section->items[index]; }
  std::string Name() const {
    if (item().progress_label != nullptr)
      return item().progress_label + std::string(with_start ? " from the start" : "");
    const std::string banner = section->banner == nullptr ? "SCAN KEYS" : section->banner;
    return banner + (item().step == nullptr ? "" : ", step " + std::to_string(index));
  }
  // Only the items behind them show what these have done.
  bool WorksForTheNext() const {
    return item().step != nullptr || section->list == &ProfileSettings::scan_keys;
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

// How an outcome differs from the sound run.
struct Difference {
  std::string shown;  // to the reader; of many lines the first ones
  std::string whole;
  std::string shape;  // the same for the same failure in another entry of a list
};

// The name of the line's field, or of the list that it begins; none where names are data.
std::string FieldOf(const std::string& line) {
  constexpr std::size_t kMostPlace = 27 + 15;
  const std::size_t end = line.find_first_of(":(=");
  return end > kMostPlace || line[end] == '=' ? "" : line.substr(0, end);
}

// With the name of a registry value as a word of its own.
std::string Parted(std::string line) {
  std::ranges::replace(line, '=', ' ');
  return line;
}

// The line with "~" for the words that the other one has, too, "0" for numbers of entries, and the
// other words as they are or as "x".
std::string WordsOf(const std::string& line, const std::string& other, bool as_they_are) {
  std::istringstream words(Parted(line)), other_words(Parted(other));
  const std::set<std::string> known(std::istream_iterator<std::string>(other_words), {});
  std::string shape;
  for (std::string word; words >> word;) {
    if (known.contains(word)) {
      word = "~";
    } else if (word.find_first_not_of("0123456789)") == word.npos) {
      word = "0";
    } else if (!as_they_are) {
      word = "x";
    }
    if (!shape.ends_with(word)) shape += word;
  }
  return shape;
}

std::string Trimmed(const std::string& line) {
  return line.substr(std::min(line.find_first_not_of(' '), line.size()));
}

// Of the text, the same on every computer.
std::string Fingerprint(const std::string& text) {
  std::uint32_t hash = 2166136261;
  for (const char c : text)
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
  return std::to_string(hash);
}

std::string Shown(const std::vector<std::string>& added, const std::vector<std::string>& missing) {
  constexpr std::size_t kMostLines = 3;
  std::string text;
  for (std::size_t i = 0; i < std::min(added.size(), kMostLines); ++i)
    text += "+" + added[i] + "|";
  if (added.size() > kMostLines)
    text += "+" + std::to_string(added.size() - kMostLines) + " lines|";
  if (missing.size() == 1) text += "-" + missing[0];
  if (missing.size() > 1)
    text += "-" + std::to_string(missing.size()) + " lines: " + Trimmed(missing.front()) + " .. " +
            Trimmed(missing.back());
  return text;
}

Difference DifferenceOf(const std::string& sound, const std::string& text) {
  std::vector<std::string> missing = Lines(sound);
  std::vector<std::string> added;
  for (const std::string& line : Lines(text)) {
    const auto same = std::find(missing.begin(), missing.end(), line);
    if (same != missing.end()) {
      missing.erase(same);
    } else {
      added.push_back(line);
    }
  }
  std::erase(missing, "");
  Difference difference;
  difference.shown = Shown(added, missing);
  std::set<std::string> shapes;
  for (std::size_t i = 0; i < added.size(); ++i) {
    difference.whole += "+" + added[i] + "|";
    const std::string replaced = i < missing.size() ? missing[i] : "";
    shapes.insert("+" + FieldOf(added[i]) + WordsOf(added[i], replaced, true));
  }
  for (std::size_t i = 0; i < missing.size(); ++i) {
    difference.whole += "-" + missing[i] + "|";
    shapes.insert("-" + FieldOf(missing[i]) +
                  WordsOf(missing[i], i < added.size() ? added[i] : "", false));
  }
  for (const std::string& shape : shapes)
    difference.shape += shape;
  // The same lines in another order, or with other blanks behind them.
  if (difference.whole.empty() && sound != text)
    difference.shown = difference.whole = difference.shape = "moved";
  return difference;
}

class FaultRun {
 public:
  explicit FaultRun(const std::string& machine) : use_(machine_) {
    const auto error = host::LoadMachine(kSources / "machines" / machine, machine_);
    if (error) ADD_FAILURE() << error->Text();
    Read(settings_);
    started_ = machine_.tick_count;
    channels_ = machine_.disks.channels;
    for (const Section& section : SectionTable()) {
      for (std::size_t i = 0; i < section.items.size(); ++i)
        places_.push_back({&section, i});
    }
    const auto mouse = std::find_if(places_.begin(), places_.end(),
                                    [](const Place& place) { return place.Name() == "Mouse..."; });
    places_.push_back({mouse->section, mouse->index, true});
  }

  const std::vector<Place>& places() const { return places_; }

  // The item with the call failing, all steps of its section around it and the next item behind.
  Outcome Of(const Place& place, const std::string& function, unsigned call) {
    const auto before = machine_.handles.OpenObjects();
    Outcome outcome;
    PutBack();
    {
      // The scan of keys adds to the list of folders.
      ProfileSettings own;
      if (place.section->list != nullptr) Read(own);
      ProfileSettings& settings = place.section->list != nullptr ? own : settings_;
      const ListBox list;
      ProgressLines progress(list.window);
      ReportWriter report((folder_.path() / "report.txt").c_str());
      std::optional<ProbeContext> context(std::in_place);
      const std::string here = folder_.path().string();
      ItemRun run{here.c_str(), settings, *context, report, progress, work_};
      RunSteps(*place.section, 0, place.index, run);
      const std::size_t begin = Written(report);
      const auto counts = machine_.faults.CallCounts();
      // A clock that stood still would be read for minutes by whoever measures by it.
      machine_.faults.AtCall("GetTickCount", [this] {
        ++machine_.tick_count;
        ++machine_.hardware.timer;  // the processor's counter goes by it
      });
      if (!function.empty()) State(function, call);
      if (place.with_start) context.emplace();
      RunItem(place.item(), run);
      machine_.faults.Forget();
      PutBack();
      const std::size_t end = Written(report);
      CountCalls(counts);
      outcome.status = LastLine(list, place.item());
      if (place.with_start) context.emplace();
      if (call <= kCallsWithNext || place.WorksForTheNext()) RunItem(NextTo(place), run);
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
  // What an item leaves changed. Each is to find the machine as the sound run has found it.
  void PutBack() {
    machine_.tick_count = started_;
    machine_.disks.channels = channels_;
  }
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
  std::array<host::IdeChannel, 4> channels_;  // as they are before any transfer
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

// All calls, then none of which succeeds.
std::vector<unsigned> CallsToFail(unsigned count) {
  std::vector<unsigned> calls(std::min(count, kMostCalls));
  std::iota(calls.begin(), calls.end(), 1);
  calls.push_back(kAlways);
  return calls;
}

// One line of the file.
struct KeptOutcome {
  std::string status;
  std::vector<Difference> differences;
  std::map<std::string, std::vector<unsigned>> faults;

  std::string Text() const {
    std::string all;
    bool all_alike = true;
    for (const Difference& difference : differences) {
      all += difference.whole + "\n";
      all_alike = all_alike && difference.whole == differences[0].whole;
    }
    const bool is_whole = differences[0].shown.find(" lines") == std::string::npos;
    return status + "\t" + differences[0].shown +
           (all_alike && is_whole ? "" : " [" + Fingerprint(all) + "]");
  }
};

std::vector<std::string> LinesOf(FaultRun& run, const std::string& machine, const Place& place) {
  const Outcome sound = run.Of(place, "", 0);
  std::map<std::string, KeptOutcome> outcomes;
  const std::map<std::string, unsigned> functions = run.calls();
  for (const auto& [function, count] : functions) {
    for (const unsigned call : CallsToFail(count)) {
      const Outcome outcome = run.Of(place, function, call);
      Difference difference = DifferenceOf(sound.text, outcome.text);
      if (place.WorksForTheNext()) {
        difference = DifferenceOf(sound.next_text, outcome.next_text);
      } else if (call <= kCallsWithNext) {
        EXPECT_EQ(outcome.next_text, sound.next_text)
            << machine << ", behind " << place.Name() << ", " << function << " " << call;
      }
      KeptOutcome& kept = outcomes[outcome.status + "\t" + difference.shape];
      kept.status = outcome.status;
      kept.differences.push_back(difference);
      kept.faults[function].push_back(call);
    }
  }
  std::vector<std::string> lines;
  for (const auto& [shape, outcome] : outcomes) {
    std::string line = machine + "\t" + place.Name() + "\t" + outcome.Text() + "\t";
    for (const auto& [function, calls] : outcome.faults)
      line += (line.back() == '\t' ? "" : "; ") + function + Calls(calls);
    lines.push_back(host::Utf8FromCodePage(line));
  }
  return lines;
}

TEST(EveryFault, HasTheOutcomeThatIsKept) {
  std::vector<std::string> came;
  for (const char* const machine : {"winxp", "nt40", "nt351", "win98se", "win95"}) {
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
