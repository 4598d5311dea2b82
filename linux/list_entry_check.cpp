#include "linux/list_entry_check.h"

#include <algorithm>
#include <utility>

#include "linux/path_check.h"
#include "linux/profile_finding.h"
#include "platform/host/code_page.h"
#include "platform/host/profile_file.h"
#include "scans/folder_tree.h"
#include "scans/list_entry.h"
#include "util/numbers.h"
#include "util/text.h"

namespace host {
namespace {

using hostscope::CutAtLastComma;
using hostscope::ProfileSettings;

using Reasons = std::vector<std::string>;

// Whether ParseProfileNumber reads the text to its end.
bool IsWholeNumber(std::string_view text) {
  std::string_view digits = "0123456789";
  if (text.starts_with("0x") || text.starts_with("0X")) {
    digits = "0123456789ABCDEFabcdef";
    text.remove_prefix(2);
  } else if (text.starts_with('-')) {
    text.remove_prefix(1);
  } else if (text.size() > 1 && text[0] == '0' && text[1] <= '7') {
    digits = "01234567";
  }
  return !text.empty() && text.find_first_not_of(digits) == std::string_view::npos;
}

// What stood behind a comma; null for none.
void CheckNumber(const char* field, const char* advice, Reasons& reasons) {
  if (field == nullptr || IsWholeNumber(field)) return;
  reasons.push_back(QuotedForFinding(field) +
                    " behind the comma is taken for the number, and read as " +
                    std::to_string(hostscope::ParseProfileNumber(field)) + ": " + advice);
}

constexpr char kPlainNumber[] = "write the number without a blank, like \",1\"";

std::string_view BeforeBackslash(std::string_view entry) {
  return entry.substr(0, entry.find('\\'));
}

// By its long name, and by its abbreviation too.
const hostscope::HiveName* FindHive(std::string_view name, bool abbreviated) {
  const auto hives = hostscope::Hives();
  const auto found = std::find_if(hives.begin(), hives.end(), [&](const auto& h) {
    return EqualNoCase(h.name, name) || (abbreviated && EqualNoCase(h.abbreviation, name));
  });
  return found == hives.end() ? nullptr : &*found;
}

bool EndsWithNoCase(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() &&
         EqualNoCase(text.substr(text.size() - ending.size()), ending);
}

std::string Abbreviations() {
  std::string list;
  for (const hostscope::HiveName& hive : hostscope::Hives())
    list.append(list.empty() ? "" : ", ").append(hive.abbreviation);
  return list;
}

// Of an entry that names no hive as the program knows it.
std::string HiveReason(std::string_view entry, const char* consequence) {
  const std::string_view name = BeforeBackslash(entry);
  const hostscope::HiveName* const hive = FindHive(name, false);
  const std::string meant = RegistryEntryMeant(entry);
  return (hive != nullptr ? std::string("the long name ") + hive->name + " is not known here"
                          : "no hive is called " + QuotedForFinding(name)) +
         ", so the entry is " + consequence + ": " +
         (meant.empty() ? "begin it with one of " + Abbreviations() + " and a backslash"
                        : "write " + meant);
}

// What a parser that ends the text earlier leaves of it.
std::string BeforeZero(const std::string& text) {
  return text.substr(0, text.find('\0'));
}

// An asterisk behind other characters; one alone is the name of a key of HKCR.
bool HoldsWildcard(std::string_view subkey) {
  for (std::size_t at = subkey.find('*'); at != std::string_view::npos;
       at = subkey.find('*', at + 1)) {
    const bool begins = at == 0 || subkey[at - 1] == '\\';
    const bool ends = at + 1 == subkey.size() || subkey[at + 1] == '\\';
    if (!begins || !ends) return true;
  }
  return false;
}

void CheckSubkey(std::string_view subkey, Reasons& reasons) {
  if (subkey.starts_with('\\')) {
    reasons.emplace_back(
        "there are two backslashes behind the hive, so no key is found: write one");
  }
  if (HoldsWildcard(subkey)) {
    reasons.emplace_back(
        "a \"*\" does not stand for several keys, so no key is found: name the key above them, "
        "with a number for everything below it");
  }
}

// The entry with and without its numbers.
void CheckRegistryPlace(const std::string& whole, const std::string& entry, Reasons& reasons) {
  std::string cut = entry;
  const hostscope::RegistryPath place = hostscope::ParseRegistryPath(cut.data());
  if (place.root == nullptr) {
    reasons.push_back(HiveReason(whole, "left out"));
  } else if (place.item != nullptr) {
    reasons.push_back("there is a comma too many, and " + QuotedForFinding(place.item) +
                      " is cut off: a key with a comma in its name can't be named");
  }
  if (place.subkey != nullptr) CheckSubkey(place.subkey, reasons);
}

void CheckRegistryKey(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  CheckNumber(CutAtLastComma(entry.data()), kPlainNumber, reasons);
  CheckRegistryPlace(whole, BeforeZero(entry), reasons);
}

void CheckScanKey(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const last = CutAtLastComma(entry.data());
  const char* const before = CutAtLastComma(entry.data());
  CheckNumber(before, kPlainNumber, reasons);
  CheckNumber(last, kPlainNumber, reasons);
  CheckRegistryPlace(whole, BeforeZero(entry), reasons);
}

void AddPathFaults(std::string_view path, const PathUse& use, Reasons& reasons) {
  for (std::string& reason : CheckPath(path, use))
    reasons.push_back(std::move(reason));
}

bool LooksLikeHive(std::string_view entry) {
  const std::string_view name = BeforeBackslash(entry);
  constexpr std::size_t kLongest = 5;  // of what may be a misspelt abbreviation
  return !RegistryEntryMeant(entry).empty() ||
         (name.size() != entry.size() && name.size() <= kLongest &&
          EqualNoCase(name.substr(0, 2), "HK"));
}

// The value of the registry that names a folder.
void CheckFolderValue(const hostscope::RegistryPath& place, Reasons& reasons) {
  const bool root = place.subkey == nullptr || *place.subkey == '\0';
  if (root && place.item == nullptr) {
    reasons.emplace_back(
        "the entry names a hive and no key, so no value is found: name the key and the value that "
        "holds the path of a folder");
  } else if (!root) {
    CheckSubkey(place.subkey, reasons);
  }
}

void CheckFolder(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const number = CutAtLastComma(entry.data());
  const std::string folder = BeforeZero(entry);
  std::string cut = folder;
  const hostscope::RegistryPath place = hostscope::ParseRegistryPath(cut.data());
  const bool in_registry = place.root != nullptr;
  CheckNumber(number,
              in_registry
                  ? "write the number behind the value's name, like \",value,1\""
                  : "write the number without a blank, like \",1\", or behind a name with a "
                    "comma in it \",0\"",
              reasons);
  if (EqualNoCase(folder, hostscope::kRunFolderEntry)) return;
  if (in_registry) {
    CheckFolderValue(place, reasons);
  } else if (folder.empty()) {
    reasons.emplace_back("there is no path before the comma, so nothing is found: write one");
  } else if (folder.starts_with('<')) {
    reasons.push_back(QuotedForFinding(folder) + " stands for no folder: write " +
                      hostscope::kRunFolderEntry);
  } else if (LooksLikeHive(folder)) {
    reasons.push_back(HiveReason(whole, "taken for the path of a folder"));
  } else {
    AddPathFaults(folder, kListedFolder, reasons);
  }
}

constexpr std::string_view kLibraryEnding = ".dll";

void CheckPlugIn(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const function = CutAtLastComma(entry.data());
  const std::string library = BeforeZero(entry);
  if (function == nullptr || *function == '\0') {
    reasons.emplace_back(
        "no function is named, so none is called: write a comma and the name of the function "
        "behind the library");
  } else if (*function == ' ' || *function == '\t') {
    reasons.emplace_back(
        "the blank behind the comma counts as part of the function's name, so the function is not "
        "found: leave the blank out");
  } else if (IsWholeNumber(function)) {
    reasons.push_back(
        QuotedForFinding(function) +
        " behind the last comma is taken for the name of the function: leave the number out");
  } else if (EndsWithNoCase(function, kLibraryEnding)) {
    reasons.push_back(QuotedForFinding(function) +
                      " is taken for the name of the function: write the library first");
  }
  if (library.empty()) {
    reasons.emplace_back("no library is named before the comma: write one");
  }
  AddPathFaults(library, kLibrary, reasons);
}

// Something behind the library, as another one, or a number as other lists have it.
void CheckDll(const std::string& entry, Reasons& reasons) {
  const std::string small = LowerCase(entry);
  const std::size_t ending = small.find(kLibraryEnding);
  const std::size_t end =
      ending == std::string::npos ? entry.size() : ending + kLibraryEnding.size();
  if (end < entry.size() && std::string_view(" ,;").find(entry[end]) != std::string_view::npos) {
    reasons.push_back("the whole line is the name of one library, and " +
                      QuotedForFinding(std::string_view(entry).substr(end)) +
                      " belongs to it: write one library to a line, and nothing else");
  }
  AddPathFaults(entry, kLibrary, reasons);
}

// What a line has beside the entry that was meant: each is a sentence, and is taken off the entry.
void CheckSurroundings(std::string& entry, Reasons& reasons) {
  const std::size_t comment = entry.find(" ;");
  if (comment != std::string::npos) {
    reasons.push_back(QuotedForFinding(entry.substr(comment + 1)) +
                      " belongs to the entry: write comments in lines of their own");
    entry.erase(entry.find_last_not_of(' ', comment) + 1);
  }
  const std::size_t digits = entry.find_first_not_of("0123456789");
  if (digits != 0 && digits != std::string::npos && entry[digits] == '=') {
    reasons.push_back(QuotedForFinding(entry.substr(0, digits + 1)) +
                      " belongs to the entry: leave it out");
    entry.erase(0, digits + 1);
  }
}

}  // namespace

std::string RegistryEntryMeant(std::string_view text) {
  for (const std::string_view start : {"My Computer\\", "Computer\\"}) {
    if (EqualNoCase(text.substr(0, start.size()), start)) text.remove_prefix(start.size());
  }
  const std::string_view name = text.substr(0, text.find_first_of("\\/:,"));
  const hostscope::HiveName* const hive = FindHive(TrimProfileText(name), true);
  if (hive == nullptr) return {};
  std::string rest(text.substr(name.size()));
  if (rest.starts_with(':')) rest.erase(0, 1);
  if (rest.find('\\') == std::string::npos) std::replace(rest.begin(), rest.end(), '/', '\\');
  return hive->abbreviation + rest;
}

std::vector<std::string> CheckListEntry(const hostscope::CatalogueRow& row,
                                        const std::string& given) {
  Reasons reasons;
  std::string entry = given;
  if (entry == "#" || entry.starts_with("# ")) {
    reasons.emplace_back("a line that begins with \"#\" is an entry: begin comments with \";\"");
    return reasons;
  }
  CheckSurroundings(entry, reasons);
  if (row.list == &ProfileSettings::registry_keys) CheckRegistryKey(entry, reasons);
  if (row.list == &ProfileSettings::scan_keys) CheckScanKey(entry, reasons);
  if (row.list == &ProfileSettings::folders) CheckFolder(entry, reasons);
  if (row.list == &ProfileSettings::custom_dlls) CheckPlugIn(entry, reasons);
  if (row.list == &ProfileSettings::dlls) CheckDll(entry, reasons);
  return reasons;
}

}  // namespace host
