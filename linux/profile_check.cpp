#include "linux/profile_check.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "linux/free_text_check.h"
#include "linux/list_entry_check.h"
#include "linux/near_names.h"
#include "linux/path_check.h"
#include "platform/host/code_page.h"
#include "platform/host/desktop.h"
#include "platform/host/profile_file.h"
#include "platform/win32.h"
#include "profile/catalogue.h"
#include "report/report_worker.h"
#include "report/section_table.h"

namespace host {
namespace {

using hostscope::Catalogue;
using hostscope::CatalogueRow;
using hostscope::ProfileSettings;
using hostscope::ReadMethod;

constexpr std::size_t kWholeFile = SIZE_MAX;
constexpr std::size_t kOldFileLimit = 65536;  // what Windows 95, 98 and Me read of a file
constexpr std::size_t kListLimit = hostscope::kWorkAreaSize - 2;  // two zeros end a list
constexpr std::size_t kFindingsOfNoProfile = 1000;                // no profile has as many

std::string UnknownKeyReason(std::string_view section, std::string_view key) {
  if (key.empty()) return "there is no key before the \"=\", so the line does nothing";
  std::string reason = "nothing reads the key " + QuotedForFinding(key) + " in this section: ";
  const CatalogueRow* const nearest = NearestKey(section, key);
  if (nearest == nullptr) return reason + "leave the line out";
  reason.append("write ").append(nearest->key);
  if (!EqualNoCase(nearest->section, section))
    reason += " below " + SectionHeader(nearest->section);
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
    CheckOldSections();
    CheckSections();
    CheckFreeTexts();
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const auto& a, const auto& b) { return a.line < b.line; });
    return std::move(findings_);
  }

 private:
  using Rows = std::vector<const CatalogueRow*>;

  void Report(std::size_t line, std::string reason) {
    findings_.push_back({line, std::move(reason)});
  }
  bool IsReportName(const CatalogueRow& row) const {
    return row.text != nullptr && row.text(*settings_).data() == settings_->report_file_name;
  }
  std::size_t MostCharacters(const CatalogueRow& row) const {
    return row.text(*settings_).size() - 1;
  }
  std::size_t LineAt(std::size_t offset) const {
    return 1 + CountLineEnds(std::string_view(content_).substr(0, offset));
  }
  // Of another file names near to those in it need not be looked for.
  bool IsProfile() const { return findings_.size() < kFindingsOfNoProfile; }
  bool IsUtf16() const {
    return content_.starts_with("\xFF\xFE") || content_.starts_with("\xFE\xFF");
  }

  void CheckFile();
  void CheckBytes();
  void CheckSign();
  void CheckOldSections();
  void CheckSections();
  std::string UnknownSectionReason(const ProfileSection& section, std::string_view before);
  void CheckSection(const Rows& rows, const ProfileSection& section);
  void CheckList(const CatalogueRow& row, const ProfileSection& section);
  void CheckKeys(const Rows& rows, const ProfileSection& section);
  void CheckInteger(const CatalogueRow& row, std::size_t line, std::string_view value);
  void CheckMeaning(const CatalogueRow& row, std::size_t line, std::int32_t number);
  void CheckText(const CatalogueRow& row, std::size_t line, std::string_view value);
  void CheckFreeTexts();
  void CheckReportName(std::size_t line, std::string_view name);
  void CheckOutputFolder(const CatalogueRow& row, std::size_t line, std::int32_t number);
  void CheckMessage(std::size_t line);
  void CheckButtons(std::size_t line, std::int32_t number);

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
      Report(1, "there is no section " + SectionHeader(row.section) + advice + " below it");
    } else if (line == nullptr) {
      Report(section->number, std::string(row.key) + " is missing" + advice);
    } else if (WithoutProfileQuotes(line->value.value_or("")) != hostscope::kProfileSign) {
      Report(line->number,
             std::string(row.key) + " is not what marks a profile" + advice + ", to the letter");
    }
  }
}

// Lines that begin too far behind their header are not there for the older systems.
void Check::CheckOldSections() {
  const ProfileFile seen(content_, kOldSectionLimit);
  for (std::size_t i = 1; i < file_.sections().size(); ++i) {
    const std::vector<ProfileLine>& lines = file_.sections()[i].lines;
    const std::size_t count = seen.sections()[i].lines.size();
    if (count == lines.size() || !rows_.contains(std::string(file_.sections()[i].name))) continue;
    Report(lines[count].number,
           "this line begins more than " + std::to_string(kOldSectionLimit) +
               " bytes behind its header: Windows 95, 98 and Me see nothing of the section from "
               "here on; shorten what stands above it, comments too");
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
      Report(section->number, UnknownSectionReason(*section, (section - 1)->name));
    } else if (!is_new && rows->second.front()->method != ReadMethod::kFreeText) {
      Report(section->number, "the section " + SectionHeader(rows->first) +
                                  " is there since line " + std::to_string(first->second) +
                                  ", and only the first one counts: move these lines there");
    } else {
      CheckSection(rows->second, *section);
    }
  }
}

// The name before it may be that of a text, which this header ends.
std::string Check::UnknownSectionReason(const ProfileSection& section, std::string_view before) {
  const std::string nothing = "nothing reads the section " + QuotedForFinding(section.name) + ": ";
  const std::string key = RegistryEntryMeant(section.name);
  if (!key.empty()) return nothing + "write " + key + " without brackets, as a line of a list";
  const CatalogueRow* const nearest = IsProfile() ? NearestSection(section.name) : nullptr;
  if (nearest != nullptr) return nothing + "write " + SectionHeader(nearest->section);
  const auto text = rows_.find(std::string(before));
  if (text != rows_.end() && text->second.front()->method == ReadMethod::kFreeText) {
    return nothing + "leave it out, or when it was meant for the text of " +
           SectionHeader(text->first) + ", which it ends, write another bracket";
  }
  return nothing + "leave it out, with its lines";
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
                              (begin < kListLimit ? "cut, and those below are " : "") +
                              "not seen; use several profiles");
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
      Report(line.number,
             IsProfile() ? UnknownKeyReason(section.name, line.key) : "nothing reads the line");
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
  if (row.number == &ProfileSettings::output_folder) {
    CheckOutputFolder(row, line, number);
  } else if (row.number == &ProfileSettings::message_buttons) {
    CheckButtons(line, number);
  } else if (row.number == &ProfileSettings::create_message_box && number != 0) {
    CheckMessage(line);
  } else if (number != 0 && IsOfReport(row) && !SwitchesItem(row)) {
    Report(line, std::string(row.key) +
                     (row.switches_section
                          ? " switches on the heading of its section and nothing below it"
                          : " switches nothing") +
                     ": leave it out");
  }
}

void Check::CheckOutputFolder(const CatalogueRow& row, std::size_t line, std::int32_t number) {
  constexpr std::int32_t kLastFolder = 3;  // the program's own, by agreement
  if (number < 0 || number > kLastFolder) {
    Report(line, std::string(row.key) +
                     " knows the numbers 0 to 3, and any other one means the "
                     "program's own folder: write 3 for that");
  }
  for (const CatalogueRow* const other : rows_[row.section]) {
    if (number == 0 || !IsReportName(*other)) continue;
    if (file_.Value(row.section, other->key).value_or("").find(':') == std::string_view::npos)
      continue;
    Report(line, std::string(row.key) + " is not looked at, since " + other->key +
                     " is a whole path: leave one of them out");
  }
}

void Check::CheckMessage(std::size_t line) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.method != ReadMethod::kFreeText || row.moment != hostscope::ReadMoment::kMessage ||
        file_.Find(row.section) != nullptr) {
      continue;
    }
    const std::string header = SectionHeader(row.section);
    if (content_.find(header) != std::string::npos) continue;
    Report(line, "there is no section " + header + ", so the message is empty: write its text");
  }
}

// Only what every Windows takes alike.
void Check::CheckButtons(std::size_t line, std::int32_t number) {
  const auto style = static_cast<UINT>(number);
  const std::string in_number = " in " + std::to_string(number);
  const UINT kind = style & MB_TYPEMASK;
  if (kind > MB_RETRYCANCEL) {
    Report(line, "there are no buttons of the kind " + std::to_string(kind) +
                     ", so the message is not shown and the run goes on: write 0 to 5, and 256 or "
                     "512 added to it");
    return;
  }
  const UINT picture = style & MB_ICONMASK & ~MB_ICONINFORMATION;
  if (picture != 0) {
    Report(line, "the message has the picture for information (64), and the " +
                     std::to_string(picture) + in_number + " makes no other one of it: write " +
                     std::to_string(static_cast<std::int32_t>(style - picture)));
  }
  ShownMessageBox box;
  box.style = style;
  const std::size_t count = box.Buttons().size();
  const std::size_t chosen = (style & MB_DEFMASK) / MB_DEFBUTTON2;
  if (chosen >= count) {
    Report(line, "the " + std::to_string(chosen * MB_DEFBUTTON2) + in_number + " is for button " +
                     std::to_string(chosen + 1) +
                     ", and there is no such button: the message has " + std::to_string(count));
  }
}

void Check::CheckText(const CatalogueRow& row, std::size_t line, std::string_view value) {
  const std::size_t most = MostCharacters(row);
  if (value.size() > most) {
    Report(line, std::string(row.key) + " has " + std::to_string(value.size()) +
                     " characters and is cut after " + std::to_string(most) + ": shorten it");
  } else if (IsReportName(row)) {
    CheckReportName(line, value);
  }
  if (!row.only_when_empty || value.empty()) return;
  for (const CatalogueRow* const other : rows_[row.section]) {
    if (other == &row || other->text != row.text) continue;
    if (file_.Value(row.section, other->key).value_or("").empty()) continue;
    Report(line, std::string(row.key) + " is not read, since " + other->key +
                     " has a text: leave one of them out");
  }
}

void Check::CheckReportName(std::size_t line, std::string_view name) {
  if (name.empty())
    Report(line, "the report has no name, so none can be written: write one, or leave the key out");
  for (std::string& reason : CheckPath(name, kReport))
    Report(line, std::move(reason));
}

// They are looked for in the file's bytes, so there are none in a file of 16-bit characters.
void Check::CheckFreeTexts() {
  if (IsUtf16()) return;
  for (const CatalogueRow& row : Catalogue()) {
    if (row.method != ReadMethod::kFreeText) continue;
    for (ProfileFinding& finding : CheckFreeText(content_, file_, row.section, MostCharacters(row)))
      findings_.push_back(std::move(finding));
  }
}

}  // namespace

std::vector<ProfileFinding> CheckProfile(const std::string& content) {
  return Check(content).Run();
}

}  // namespace host
