#include "linux/list_entry_check.h"

#include <algorithm>

#include "platform/host/code_page.h"
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

const hostscope::HiveName* HiveOfFullName(std::string_view name) {
  const auto hives = hostscope::Hives();
  const auto found = std::find_if(hives.begin(), hives.end(),
                                  [&](const auto& h) { return EqualNoCase(h.name, name); });
  return found == hives.end() ? nullptr : &*found;
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
  if (const hostscope::HiveName* const hive = HiveOfFullName(name)) {
    return std::string("the long name ") + hive->name + " is not known here, so the entry is " +
           consequence + ": write " + hive->abbreviation + std::string(entry.substr(name.size()));
  }
  return "no hive is called " + QuotedForFinding(name) + ", so the entry is " + consequence +
         ": begin it with one of " + Abbreviations() + " and a backslash";
}

// What a parser that ends the text earlier leaves of it.
std::string BeforeZero(const std::string& text) {
  return text.substr(0, text.find('\0'));
}

// The entry without its numbers.
void CheckRegistryPlace(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const hostscope::RegistryPath place = hostscope::ParseRegistryPath(entry.data());
  if (place.root == nullptr) {
    reasons.push_back(HiveReason(whole, "left out"));
  } else if (place.item != nullptr) {
    reasons.push_back("there is a comma too many, and " + QuotedForFinding(place.item) +
                      " is cut off: a key with a comma in its name can't be named");
  }
}

void CheckRegistryKey(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  CheckNumber(CutAtLastComma(entry.data()), kPlainNumber, reasons);
  CheckRegistryPlace(BeforeZero(entry), reasons);
}

void CheckScanKey(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const last = CutAtLastComma(entry.data());
  const char* const before = CutAtLastComma(entry.data());
  CheckNumber(before, kPlainNumber, reasons);
  CheckNumber(last, kPlainNumber, reasons);
  CheckRegistryPlace(BeforeZero(entry), reasons);
}

bool HoldsVariable(std::string_view path) {
  const std::size_t first = path.find('%');
  return first != std::string_view::npos && path.find('%', first + 2) != std::string_view::npos;
}

void CheckPath(std::string_view path, Reasons& reasons) {
  if (HoldsVariable(path)) {
    reasons.push_back("variables are not replaced in " + QuotedForFinding(path) +
                      ", so nothing is found: write the path itself");
  }
  if (path.find('"') != std::string_view::npos) {
    reasons.emplace_back(
        "no path has a double quote, so nothing is found: write the path without quotes, with its "
        "blanks");
  }
}

bool LooksLikeHive(std::string_view entry) {
  const std::string_view name = BeforeBackslash(entry);
  constexpr std::size_t kLongest = 5;  // of what may be a misspelt abbreviation
  return HiveOfFullName(name) != nullptr ||
         (name.size() != entry.size() && name.size() <= kLongest &&
          EqualNoCase(name.substr(0, 2), "HK"));
}

void CheckFolder(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const number = CutAtLastComma(entry.data());
  const std::string folder = BeforeZero(entry);
  std::string place = folder;
  const bool in_registry = hostscope::ParseRegistryPath(place.data()).root != nullptr;
  CheckNumber(number,
              in_registry
                  ? "write the number behind the value's name, like \",value,1\""
                  : "write the number without a blank, like \",1\", or behind a name with a "
                    "comma in it \",0\"",
              reasons);
  if (in_registry || EqualNoCase(folder, hostscope::kRunFolderEntry)) return;
  if (folder.starts_with('<')) {
    reasons.push_back(QuotedForFinding(folder) + " stands for no folder: write " +
                      hostscope::kRunFolderEntry);
  } else if (LooksLikeHive(folder)) {
    reasons.push_back(HiveReason(folder, "taken for the path of a folder"));
  } else {
    CheckPath(folder, reasons);
  }
}

void CheckPlugIn(const std::string& whole, Reasons& reasons) {
  std::string entry = whole;
  const char* const function = CutAtLastComma(entry.data());
  if (function == nullptr || *function == '\0') {
    reasons.emplace_back(
        "no function is named, so none is called: write a comma and the name of the function "
        "behind the library");
  } else if (*function == ' ' || *function == '\t') {
    reasons.emplace_back(
        "the blank behind the comma counts as part of the function's name, so the function is not "
        "found: leave the blank out");
  }
  CheckPath(entry.c_str(), reasons);
}

}  // namespace

std::string QuotedForFinding(std::string_view text) {
  constexpr std::size_t kMost = 60;
  return '"' + std::string(text.substr(0, kMost)) + (text.size() > kMost ? "...\"" : "\"");
}

std::vector<std::string> CheckListEntry(const hostscope::CatalogueRow& row,
                                        const std::string& entry) {
  Reasons reasons;
  if (row.list == &ProfileSettings::registry_keys) CheckRegistryKey(entry, reasons);
  if (row.list == &ProfileSettings::scan_keys) CheckScanKey(entry, reasons);
  if (row.list == &ProfileSettings::folders) CheckFolder(entry, reasons);
  if (row.list == &ProfileSettings::custom_dlls) CheckPlugIn(entry, reasons);
  if (row.list == &ProfileSettings::dlls) CheckPath(entry, reasons);
  return reasons;
}

}  // namespace host
