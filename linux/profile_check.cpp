#include "linux/profile_check.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "linux/list_entry_check.h"
#include "platform/host/code_page.h"
#include "platform/host/profile_file.h"
#include "profile/catalogue.h"
#include "report/report_worker.h"
#include "report/section_table.h"
#include "util/profile_text.h"

namespace host {
namespace {

using hostscope::Catalogue;
using hostscope::CatalogueRow;
using hostscope::ProfileSettings;
using hostscope::ProfileText;
using hostscope::ReadMethod;

constexpr std::size_t kWholeFile = SIZE_MAX;
constexpr std::size_t kOldFileLimit = 65536;  // what Windows 95, 98 and Me read of a file
constexpr std::size_t kListLimit = hostscope::kWorkAreaSize - 2;  // two zeros end a list
constexpr std::size_t kIntegerTextLimit = 29;  // characters of a value that are looked at for it

std::string Header(std::string_view section) {
  return "[" + std::string(section) + "]";
}

// By how many letters the names differ, whatever their case.
std::size_t Distance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j)
    row[j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j < row.size(); ++j) {
      const bool same = LowerCase(left[i - 1]) == LowerCase(right[j - 1]);
      const std::size_t replaced = diagonal + (same ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

// Whether one may be a slip of the other.
bool IsNear(std::string_view left, std::string_view right, std::size_t distance) {
  return distance <= std::clamp<std::size_t>(std::max(left.size(), right.size()) / 3, 1, 3);
}

constexpr std::size_t kLongestName = 64;  // of which a near one is looked for

const CatalogueRow* NearestSection(std::string_view name) {
  const CatalogueRow* nearest = nullptr;
  std::size_t least = SIZE_MAX;
  if (name.size() > kLongestName) return nullptr;
  for (const CatalogueRow& row : Catalogue()) {
    const std::size_t distance = Distance(name, row.section);
    if (distance >= least || !IsNear(name, row.section, distance)) continue;
    least = distance;
    nearest = &row;
  }
  return nearest;
}

// One of the section itself goes before one of another at the same distance.
const CatalogueRow* NearestKey(std::string_view section, std::string_view key) {
  const CatalogueRow* nearest = nullptr;
  std::size_t least = SIZE_MAX;
  if (key.size() > kLongestName) return nullptr;
  for (const CatalogueRow& row : Catalogue()) {
    if (row.key == nullptr) continue;
    const std::size_t distance = Distance(key, row.key);
    const std::size_t rank = 2 * distance + (EqualNoCase(row.section, section) ? 0 : 1);
    if (rank >= least || !IsNear(key, row.key, distance)) continue;
    least = rank;
    nearest = &row;
  }
  return nearest;
}

std::string UnknownKeyReason(std::string_view section, std::string_view key) {
  if (key.empty()) return "there is no key before the \"=\", so the line does nothing";
  std::string reason = "nothing reads the key " + QuotedForFinding(key) + " in this section: ";
  const CatalogueRow* const nearest = NearestKey(section, key);
  if (nearest == nullptr) return reason + "leave the line out";
  reason.append("write ").append(nearest->key);
  if (!EqualNoCase(nearest->section, section)) reason += " below " + Header(nearest->section);
  return reason;
}

bool IsDecimal(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::int32_t IntegerOf(const CatalogueRow& row, std::string_view value) {
  if (value.empty()) return row.default_number;
  return static_cast<std::int32_t>(ParseProfileInteger(value.substr(0, kIntegerTextLimit)));
}

bool IsInRange(std::string_view decimal, std::int32_t read) {
  return std::strtoll(std::string(decimal).c_str(), nullptr, 10) == read;
}

// Whether any item of the report is turned on by the key.
bool SwitchesItem(const CatalogueRow& row) {
  for (const hostscope::Section& section : hostscope::SectionTable()) {
    for (const hostscope::Item& item : section.items) {
      if (std::find(item.switches.begin(), item.switches.end(), row.number) != item.switches.end())
        return true;
    }
  }
  return false;
}

// Whether the section holds switches of the report, so that a key of it is expected to be one.
bool IsOfReport(const CatalogueRow& row) {
  return std::any_of(Catalogue().begin(), Catalogue().end(), [&](const CatalogueRow& other) {
    return other.switches_section && EqualNoCase(other.section, row.section);
  });
}

class Check {
 public:
  explicit Check(const std::string& content)
      : content_(content), file_(content, kWholeFile), settings_(new ProfileSettings) {
    for (const CatalogueRow& row : Catalogue())
      rows_[row.section].push_back(&row);
  }

  std::vector<ProfileFinding> Run() {
    CheckFile();
    CheckSign();
    CheckSections();
    if (!IsUtf16()) {
      for (const CatalogueRow& row : Catalogue()) {
        if (row.method == ReadMethod::kFreeText) CheckFreeText(row);
      }
    }
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const auto& a, const auto& b) { return a.line < b.line; });
    return std::move(findings_);
  }

 private:
  using Rows = std::vector<const CatalogueRow*>;

  void Report(std::size_t line, std::string reason) {
    findings_.push_back({line, std::move(reason)});
  }
  std::size_t LineAt(std::size_t offset) const {
    return 1 + CountLineEnds(std::string_view(content_).substr(0, offset));
  }
  bool IsUtf16() const {
    return content_.starts_with("\xFF\xFE") || content_.starts_with("\xFE\xFF");
  }

  void CheckFile();
  void CheckBytes();
  void CheckSign();
  void CheckSections();
  void CheckSection(const Rows& rows, const ProfileSection& section);
  void CheckList(const CatalogueRow& row, const ProfileSection& section);
  void CheckKeys(const Rows& rows, const ProfileSection& section);
  void CheckInteger(const CatalogueRow& row, std::size_t line, std::string_view value);
  void CheckMeaning(const CatalogueRow& row, std::size_t line, std::int32_t number);
  void CheckText(const CatalogueRow& row, std::size_t line, std::string_view value);
  void CheckFreeText(const CatalogueRow& row);
  void CheckBody(const CatalogueRow& row, const ProfileText::Body& body);

  const std::string& content_;
  const ProfileFile file_;
  const std::unique_ptr<ProfileSettings> settings_;  // for the sizes of its texts
  std::unordered_map<std::string, Rows, NoCaseHash, NoCaseEqual> rows_;  // by section
  std::vector<ProfileFinding> findings_;
};

void Check::CheckFile() {
  if (IsUtf16() || content_.starts_with("\xEF\xBB\xBF")) {
    Report(1,
           "the file begins with the byte-order mark of Unicode, which Windows 95, 98 and Me take "
           "for text, and the text sections everywhere: save it as text in 8-bit characters");
  }
  if (content_.size() > kOldFileLimit) {
    Report(LineAt(kOldFileLimit),
           "the file is larger than 64 KB: Windows 95, 98 and Me see nothing "
           "from this line on; spread it over several profiles");
  }
  if (!IsUtf16()) CheckBytes();
}

// One finding of a kind for the whole file.
void Check::CheckBytes() {
  std::size_t at = content_.find('\n');
  while (at != std::string::npos && at > 0 && content_[at - 1] == '\r')
    at = content_.find('\n', at + 1);
  if (at != std::string::npos) {
    Report(LineAt(at),
           "the line ends in a line feed alone: below the header of a text section this "
           "loses the first character, and editors of older Windows show such lines as "
           "one; end every line in carriage return and line feed");
  }
  const std::size_t zero = content_.find('\0');
  if (zero != std::string::npos) {
    Report(LineAt(zero),
           "there is a zero byte: the rest of its line, and every text section from "
           "here on, is not read; save the file as plain text");
  }
}

void Check::CheckSign() {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.moment != hostscope::ReadMoment::kSearch) continue;
    const std::string advice = std::string(
                                   ": the profile is used only when it is named on the "
                                   "command line; write ") +
                               row.key + "=" + hostscope::kProfileSign;
    const ProfileSection* const section = file_.Find(row.section);
    const ProfileLine* const line = section == nullptr ? nullptr : section->Find(row.key);
    if (section == nullptr) {
      Report(1, "there is no section " + Header(row.section) + advice + " below it");
    } else if (line == nullptr) {
      Report(section->number, std::string(row.key) + " is missing" + advice);
    } else if (WithoutProfileQuotes(line->value.value_or("")) != hostscope::kProfileSign) {
      Report(line->number,
             std::string(row.key) + " is not what marks a profile" + advice + ", to the letter");
    }
  }
}

void Check::CheckSections() {
  for (const ProfileLine& line : file_.sections().front().lines) {
    if (!line.IsComment())
      Report(line.number,
             "the line stands before the first section, so nothing reads it: move it "
             "below a header, or begin it with \";\"");
  }
  std::unordered_map<std::string, std::size_t, NoCaseHash, NoCaseEqual> seen;
  for (auto section = file_.sections().begin() + 1; section != file_.sections().end(); ++section) {
    const std::string name(section->name);
    const auto [first, is_new] = seen.try_emplace(name, section->number);
    const auto rows = rows_.find(name);
    if (rows == rows_.end()) {
      const CatalogueRow* const nearest = NearestSection(name);
      Report(section->number, "nothing reads the section " + QuotedForFinding(name) + ": " +
                                  (nearest == nullptr ? "leave it out, with its lines"
                                                      : "write " + Header(nearest->section)));
    } else if (!is_new) {
      Report(section->number, "the section " + Header(rows->first) + " is there since line " +
                                  std::to_string(first->second) +
                                  ", and only the first one counts: move these lines there");
    } else {
      CheckSection(rows->second, *section);
    }
  }
}

void Check::CheckSection(const Rows& rows, const ProfileSection& section) {
  switch (rows.front()->method) {
    case ReadMethod::kFreeText:
      return;  // its lines are text
    case ReadMethod::kList:
      CheckList(*rows.front(), section);
      return;
    case ReadMethod::kInteger:
    case ReadMethod::kString:
      CheckKeys(rows, section);
      return;
  }
}

void Check::CheckList(const CatalogueRow& row, const ProfileSection& section) {
  std::size_t begin = 0;
  for (const ProfileLine& line : section.lines) {
    if (line.IsComment()) continue;
    const std::string entry = line.Entry();
    const std::size_t end = begin + entry.size();
    if (end > kListLimit) {
      Report(line.number, "the section is longer than " + std::to_string(kListLimit) +
                              " characters: this entry is " +
                              (begin < kListLimit ? "cut, and those below are" : "") +
                              " not seen; use several profiles");
      return;
    }
    for (std::string& reason : CheckListEntry(row, entry))
      Report(line.number, std::move(reason));
    begin = end + 1;
  }
}

void Check::CheckKeys(const Rows& rows, const ProfileSection& section) {
  std::map<const CatalogueRow*, std::size_t> seen;
  for (const ProfileLine& line : section.lines) {
    if (line.IsComment()) continue;
    if (!line.value) {
      Report(line.number, line.key.starts_with('[')
                              ? "the line begins no section, for want of a \"]\""
                              : "there is no \"=\", so the line does nothing: write key=value, or "
                                "begin it with \";\"");
      continue;
    }
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const CatalogueRow* r) {
      return EqualNoCase(r->key, line.key);
    });
    if (found == rows.end()) {
      Report(line.number, UnknownKeyReason(section.name, line.key));
      continue;
    }
    const auto [first, is_new] = seen.try_emplace(*found, line.number);
    const CatalogueRow& row = **found;
    const std::string_view value = WithoutProfileQuotes(*line.value);
    if (!is_new) {
      Report(line.number, std::string("the key ") + row.key + " is there since line " +
                              std::to_string(first->second) +
                              ", and only the first one counts: leave one out");
    } else if (row.method == ReadMethod::kInteger) {
      CheckInteger(row, line.number, value);
    } else if (row.text != nullptr) {
      CheckText(row, line.number, value);
    }
  }
}

void Check::CheckInteger(const CatalogueRow& row, std::size_t line, std::string_view value) {
  const std::int32_t number = IntegerOf(row, value);
  const std::string read = std::to_string(number) + " is read";
  if (value.empty()) {
    Report(line, std::string(row.key) + " has no number: " + read + ", its default; write one");
  } else if (!IsDecimal(value)) {
    Report(line, QuotedForFinding(value) + " is not a decimal number: " + read +
                     (IsOfReport(row) ? "; write 1 for on or 0 for off"
                                      : "; write digits and nothing else"));
  } else if (!IsInRange(value, number)) {
    Report(line, QuotedForFinding(value) + " is too large: " + read + "; write a smaller number");
  }
  CheckMeaning(row, line, number);
}

void Check::CheckMeaning(const CatalogueRow& row, std::size_t line, std::int32_t number) {
  constexpr std::int32_t kLastFolder = 3;   // the program's own, by agreement
  constexpr std::int32_t kLastButtons = 5;  // MB_RETRYCANCEL
  constexpr std::int32_t kButtonsMask = 0xF;
  if (row.number == &ProfileSettings::output_folder && (number < 0 || number > kLastFolder)) {
    Report(line, std::string(row.key) +
                     " knows the numbers 0 to 3, and any other one means the "
                     "program's own folder: write 3 for that");
  } else if (row.number == &ProfileSettings::message_buttons &&
             (number & kButtonsMask) > kLastButtons) {
    Report(line, "there are no buttons of the kind " + std::to_string(number & kButtonsMask) +
                     ", so the message is not shown and the run goes on: write 0 to 5, and 256 or "
                     "512 added to it");
  } else if (number != 0 && IsOfReport(row) && !SwitchesItem(row)) {
    Report(line, std::string(row.key) +
                     (row.switches_section
                          ? " switches on the heading of its section and nothing below it"
                          : " switches nothing") +
                     ": leave it out");
  }
}

void Check::CheckText(const CatalogueRow& row, std::size_t line, std::string_view value) {
  const std::size_t most = row.text(*settings_).size() - 1;
  if (value.size() > most) {
    Report(line, std::string(row.key) + " has " + std::to_string(value.size()) +
                     " characters and is cut after " + std::to_string(most) + ": shorten it");
  }
  if (!row.only_when_empty || value.empty()) return;
  for (const CatalogueRow* const other : rows_[row.section]) {
    if (other == &row || other->text != row.text) continue;
    if (file_.Value(row.section, other->key).value_or("").empty()) continue;
    Report(line, std::string(row.key) + " is not read, since " + other->key +
                     " has a text: leave one of them out");
  }
}

// The program looks for the header letter for letter, wherever it stands.
void Check::CheckFreeText(const CatalogueRow& row) {
  const ProfileText::Body body = ProfileText::FindBody(content_.c_str(), row.section);
  const ProfileSection* const section = file_.Find(row.section);
  const std::string header = Header(row.section);
  const std::size_t found =
      body.header == nullptr ? 0 : LineAt(static_cast<std::size_t>(body.header - content_.c_str()));
  if (section != nullptr && (found == 0 || found > section->number)) {
    Report(section->number,
           "the text below this header is not found: write " + header +
               " at the start of the line, in capitals and without blanks in the brackets");
  } else if (found != 0 && (section == nullptr || found < section->number)) {
    Report(found,
           header + " stands in this line, so the text is taken from here" +
               (section == nullptr ? std::string()
                                   : " and not from line " + std::to_string(section->number)) +
               ": write the name without brackets");
  } else if (found != 0) {
    CheckBody(row, body);
  }
}

void Check::CheckBody(const CatalogueRow& row, const ProfileText::Body& body) {
  const char* const behind = body.header + std::string_view(row.section).size() + 2;
  const std::size_t line = LineAt(static_cast<std::size_t>(body.header - content_.c_str()));
  if (*behind != '\0' && *behind != '\r' && *behind != '\n') {
    Report(line,
           "what stands behind the header goes into the text, but for its first two "
           "characters: end the line behind the \"]\"");
  }
  const auto length = static_cast<std::size_t>(body.end - body.start);
  const std::size_t most = row.text(*settings_).size() - 1;
  if (length > most) {
    Report(LineAt(static_cast<std::size_t>(body.start - content_.c_str()) + most),
           "the text of " + Header(row.section) + " has " + std::to_string(length) +
               " characters and is cut after " + std::to_string(most) +
               ", in this line: shorten it");
  }
  if (*body.boundary != '[') return;
  const std::size_t end_line = LineAt(static_cast<std::size_t>(body.boundary - content_.c_str()));
  const bool at_header =
      std::any_of(file_.sections().begin(), file_.sections().end(),
                  [&](const ProfileSection& section) { return section.number == end_line; });
  if (!at_header) {
    Report(end_line, "the text of " + Header(row.section) +
                         " ends before the \"[\" in this line: write another bracket");
  }
}

}  // namespace

std::vector<ProfileFinding> CheckProfile(const std::string& content) {
  return Check(content).Run();
}

}  // namespace host
