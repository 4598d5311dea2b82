#include "linux/profile_summary.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "app/pre_run_message.h"
#include "app/report_location.h"
#include "platform/host/code_page.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"
#include "platform/host/terminal.h"
#include "profile/catalogue.h"
#include "profile/read_profile.h"
#include "report/report_worker.h"
#include "report/section_table.h"
#include "scans/folder_tree.h"
#include "scans/key_scan.h"
#include "scans/list_entry.h"
#include "util/numbers.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using hostscope::Item;
using hostscope::ProfileSettings;
using hostscope::ReadMoment;
using hostscope::Section;
using hostscope::StringList;
using List = StringList ProfileSettings::*;

constexpr char kUnreadable[] = "The profile can not be read.\n";

// Lines in the code page, where a byte is a column.
class Page {
 public:
  // A text of one line, wrapped.
  void Add(std::size_t indent, const std::string& text);
  void AddLines(std::size_t indent, const std::string& lines);
  std::string Text() const { return TerminalText(text_, true); }

 private:
  std::string text_;
};

void Page::Add(std::size_t indent, const std::string& text) {
  constexpr std::size_t kWidth = 78;
  std::string rest = text;
  std::replace(rest.begin(), rest.end(), '\n', ' ');
  std::size_t margin = indent;
  while (rest.size() > kWidth - margin) {
    const std::size_t blank = rest.rfind(' ', kWidth - margin);
    const bool in_a_word = blank == std::string::npos || blank == 0;
    const std::size_t length = in_a_word ? kWidth - margin : blank;
    text_ += std::string(margin, ' ') + rest.substr(0, length) + "\n";
    rest.erase(0, std::min(rest.find_first_not_of(' ', length), rest.size()));
    margin = indent + 2;
  }
  if (!rest.empty()) text_ += std::string(margin, ' ') + rest;
  if (!text_.ends_with('\n') || text.empty()) text_ += '\n';
}

void Page::AddLines(std::size_t indent, const std::string& lines) {
  for (std::size_t begin = 0; begin < lines.size();) {
    const std::size_t end = std::min(lines.find('\n', begin), lines.size());
    std::string line = lines.substr(begin, end - begin);
    if (line.ends_with('\r')) line.pop_back();
    Add(indent, line);
    begin = end + 1;
  }
}

std::string Joined(const std::vector<std::string>& words, const std::string& last_joint) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? last_joint : ", ";
    text += words[i];
  }
  return text;
}

// Where the report goes.

const char* FolderWords(std::int32_t choice) {
  switch (static_cast<hostscope::OutputFolder>(choice)) {
    case hostscope::OutputFolder::kArgument:
      return "the one named as second argument, else the program's own";
    case hostscope::OutputFolder::kDesktop:
      return "the user's desktop";
    case hostscope::OutputFolder::kDocuments:
      return "the user's documents";
  }
  return "the program's own";
}

void AddPlace(const ProfileSettings& settings, Page& page) {
  const std::string name = settings.report_file_name;
  page.Add(0, "The report");
  if (name.find(':') != std::string::npos) {
    page.Add(2, "Path: " + name);
    return;
  }
  page.Add(2, "Name: " + (name.empty() ? "(empty: no report can be written)" : name));
  page.Add(2, std::string("Folder: ") + FolderWords(settings.output_folder));
}

// The message before the run.

// By giving the answer: the buttons after which there is no run.
std::vector<std::string> EndingButtons(const std::vector<int>& buttons,
                                       const ProfileSettings& settings) {
  std::vector<std::string> names;
  for (const int button : buttons) {
    CurrentMachine().desktop.StateAnswers({button});
    const auto state = std::make_unique<hostscope::RunState>();
    if (!hostscope::ConfirmPreRunMessage(*state, settings)) names.push_back(ButtonName(button));
  }
  return names;
}

std::string ButtonWords(const ProfileSettings& settings) {
  ShownMessageBox box;
  box.style = static_cast<UINT>(settings.message_buttons);
  const std::vector<int> buttons = box.Buttons();
  if (buttons.empty()) {
    return "with buttons that not every Windows knows (" +
           std::to_string(settings.message_buttons) + ").";
  }
  std::vector<std::string> names;
  names.reserve(buttons.size());
  for (const int button : buttons)
    names.push_back(ButtonName(button));
  std::string text = std::string(names.size() > 1 ? "with the buttons " : "with the button ") +
                     Joined(names, " and ") + ". ";
  const std::vector<std::string> ending = EndingButtons(buttons, settings);
  if (ending.empty()) return text + "The run goes on whatever is answered.";
  return text + Joined(ending, " and ") + (ending.size() > 1 ? " end" : " ends") +
         " the program without a report.";
}

void AddMessage(const ProfileSettings& settings, Page& page) {
  page.Add(0, "Before the run");
  if (settings.create_message_box == 0) {
    page.Add(2, "No message is shown.");
    return;
  }
  page.Add(2, "A message is shown, " + ButtonWords(settings));
  if (*settings.message == '\0') {
    page.Add(2, "It is empty.");
    return;
  }
  page.Add(2, "Its text:");
  page.AddLines(4, settings.message);
}

// The entries of the lists. Each is cut in place by the parsers that a run uses.

struct Reading {
  std::string words;
  const char* obstacle = nullptr;  // why the program passes the entry over
};

constexpr char kNoHive[] = "it does not begin with a known hive such as HKLM";

Reading ReadDll(char* entry) {
  return {entry};
}

Reading ReadRegistryEntry(char* entry) {
  const bool subtree = hostscope::ParseProfileNumber(hostscope::CutAtLastComma(entry)) != 0;
  if (hostscope::ParseRegistryPath(entry).root == nullptr) return {{}, kNoHive};
  return {std::string(entry) +
          (subtree ? ", with everything below it" : ", its values and the names of its subkeys")};
}

const char* TreeWords(bool whole) {
  return whole ? "the whole tree" : "its files and the names of its subfolders";
}

Reading ReadFolderEntry(char* entry) {
  const hostscope::FolderEntry folder = hostscope::ParseFolderEntry(entry);
  if (folder.program_folder)
    return {std::string("the program's own folder, ") + TreeWords(folder.whole)};
  if (folder.place.root == nullptr) {
    if (*folder.path == '\0') return {{}, "it has no path"};
    return {std::string(folder.path) + ", " + TreeWords(folder.whole)};
  }
  const std::string item = folder.place.item == nullptr ? "" : folder.place.item;
  return {"the folder that " + (item.empty() ? "the default value" : "value " + item) + " of " +
          entry + " names, " + TreeWords(folder.whole)};
}

Reading ReadScanEntry(char* entry) {
  const hostscope::ScanNumbers numbers = hostscope::CutScanNumbers(entry);
  if (hostscope::ParseRegistryPath(entry).root == nullptr) return {{}, kNoHive};
  return {std::string(entry) +
          (numbers.subtree != 0 ? ", with all keys below it" : ", its own values") +
          "; of each folder found, " + TreeWords(numbers.folder != 0)};
}

Reading ReadPlugIn(char* entry) {
  const char* const function = hostscope::CutAtLastComma(entry);
  if (*entry == '\0') return {{}, "it names no library"};
  if (function == nullptr || *function == '\0') return {{}, "it names no function"};
  return {std::string("the function ") + function + " of " + entry};
}

struct EntryKind {
  List list;
  Reading (*read)(char* entry);
};
constexpr EntryKind kEntryKinds[] = {
    {&ProfileSettings::dlls, ReadDll},
    {&ProfileSettings::registry_keys, ReadRegistryEntry},
    {&ProfileSettings::folders, ReadFolderEntry},
    {&ProfileSettings::scan_keys, ReadScanEntry},
    {&ProfileSettings::custom_dlls, ReadPlugIn},
};

void AddEntries(List list, const ProfileSettings& settings, Page& page) {
  const auto* const kind = std::find_if(std::begin(kEntryKinds), std::end(kEntryKinds),
                                        [&](const EntryKind& row) { return row.list == list; });
  for (int i = 0; i < (settings.*list).count(); ++i) {
    const std::string entry = (settings.*list).Get(i);
    std::string cut = entry;
    const Reading reading = kind == std::end(kEntryKinds) ? Reading{entry} : kind->read(cut.data());
    page.Add(4, reading.obstacle == nullptr
                    ? reading.words
                    : "passed over: " + entry + " (" + reading.obstacle + ")");
  }
}

// The sections.

bool IsOn(const Section& section, const ProfileSettings& settings) {
  if (section.list != nullptr) return (settings.*section.list).count() > 0;
  return hostscope::AnySwitchOn(settings, section.profile_section);
}

// A section without a heading of its own looks for folders.
std::string Heading(const Section& section) {
  if (section.banner != nullptr) return section.banner;
  for (const Section& other : hostscope::SectionTable()) {
    if (other.list != &ProfileSettings::folders) continue;
    return std::string("Registry keys searched for folders to list below \"") + other.banner + "\"";
  }
  return {};
}

std::vector<std::string> KeysOn(const Item& item, const ProfileSettings& settings) {
  std::vector<std::string> keys;
  for (const hostscope::Switch one : item.switches) {
    if (settings.*one == 0) continue;
    for (const hostscope::CatalogueRow& row : hostscope::Catalogue()) {
      if (row.number == one) keys.emplace_back(row.key);
    }
  }
  return keys;
}

void AddItems(const Section& section, const ProfileSettings& settings, Page& page) {
  std::vector<std::string> items;
  for (const Item& item : section.items) {
    if (item.progress_label == nullptr) continue;
    const std::vector<std::string> keys = KeysOn(item, settings);
    if (keys.empty()) continue;
    std::string label = item.progress_label;
    label.erase(label.find_last_not_of(".:") + 1);
    if (item.switches.size() > 1) label += " (" + Joined(keys, ", ") + ")";
    items.push_back(label);
  }
  page.Add(4, items.empty() ? "(the heading only)" : Joined(items, ", "));
}

void AddSections(const ProfileSettings& settings, Page& page) {
  page.Add(0, "What is reported");
  bool any_on = false;
  for (const Section& section : hostscope::SectionTable()) {
    if (!IsOn(section, settings)) continue;
    any_on = true;
    page.Add(2, Heading(section));
    if (section.list != nullptr) {
      AddEntries(section.list, settings, page);
    } else {
      AddItems(section, settings, page);
    }
  }
  if (!any_on) page.Add(2, "Nothing: the report will have its first line only.");
}

// What happens to the report.

std::string Recipient(const ProfileSettings& settings) {
  const std::string name = settings.recipient_name;
  const std::string address = settings.recipient_address;
  if (name.empty() && address.empty()) return "(for the user to fill in)";
  if (name.empty() || address.empty()) return name + address;
  return name + " <" + address + ">";
}

void AddMail(const ProfileSettings& settings, Page& page) {
  if (settings.email == 0) {
    page.Add(2, "Nothing is sent: no e-mail is prepared.");
    return;
  }
  page.Add(2, "An e-mail with the report is prepared, for the user to send.");
  page.Add(4, "To: " + Recipient(settings));
  if (*settings.cc != '\0') page.Add(4, std::string("Copy to: ") + settings.cc);
  if (*settings.bcc != '\0') page.Add(4, std::string("Blind copy to: ") + settings.bcc);
  page.Add(4, std::string("Subject: ") + (*settings.subject == '\0' ? "(none)" : settings.subject));
  if (*settings.email_body != '\0') {
    page.Add(4, "Text:");
    page.AddLines(6, settings.email_body);
  }
  page.Add(2, settings.email_check_box != 0
                  ? "The user may decline it by the check box of the dialog."
                  : "The check box of the dialog is disabled: the user can not decline it there.");
}

void AddAfterwards(const ProfileSettings& settings, Page& page) {
  page.Add(0, "Afterwards");
  page.Add(2, settings.open != 0 ? "The report is opened with the application for its kind of file."
                                 : "The report is not opened.");
  AddMail(settings, page);
}

// The path as the program knows one of the user's own files; empty when there is none.
std::string ProgramPath(const std::string& path) {
  std::error_code error;
  const std::string full = fs::absolute(path, error).lexically_normal().native();
  return error || !IsUtf8(full) ? std::string() : CodePageFromUtf8WithMarks(full);
}

void AddSummary(const std::string& path, Page& page) {
  const auto settings = std::make_unique<ProfileSettings>();
  std::vector<char> work(hostscope::kWorkAreaSize);
  hostscope::CreateLists(*settings);
  for (const ReadMoment moment :
       {ReadMoment::kStartUp, ReadMoment::kMessage, ReadMoment::kDialog, ReadMoment::kWorker}) {
    hostscope::ReadProfile(path.c_str(), moment, *settings, work);
  }
  AddPlace(*settings, page);
  AddMessage(*settings, page);
  AddSections(*settings, page);
  AddAfterwards(*settings, page);
  hostscope::DestroyLists(*settings);
}

}  // namespace

std::string ProfileSummary(const std::string& profile_path) {
  Machine machine;
  const std::string path = ProgramPath(profile_path);
  std::string content;
  if (machine.files.ReadWhole(path, content) != 0) return kUnreadable;
  Page page;
  RunProcess(machine, [&] { AddSummary(path, page); });
  return page.Text();
}

}  // namespace host
