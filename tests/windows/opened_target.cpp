#include "tests/windows/opened_target.h"

namespace drive {
namespace {

std::string OwnPath() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  return path;
}

std::string InQuotes(const std::string& text) {
  return "\"" + text + "\"";
}

}  // namespace

WebBrowser::WebBrowser(const Folder& folder)
    : record_path_(folder.Path("opened.txt")),
      command_(RegistryValue::Text(
          HKEY_CLASSES_ROOT, "http\\shell\\open\\command", "",
          InQuotes(OwnPath()) + " " + kRecordSwitch + " " + InQuotes(record_path_) + " \"%1\"")) {}

std::optional<OpenedTarget> WebBrowser::WaitForTarget() const {
  std::optional<std::string> record;
  WaitUntil([&] { return (record = ReadFileBytes(record_path_)).has_value(); });
  if (!record) return std::nullopt;
  const size_t space = record->find(' ');
  return OpenedTarget{record->substr(space + 1), std::stoi(record->substr(0, space))};
}

// The record appears complete or not at all.
int RecordOpenedTarget(const char* record_path, const char* target) {
  STARTUPINFOA how = {};
  GetStartupInfoA(&how);
  const int show = how.dwFlags & STARTF_USESHOWWINDOW ? how.wShowWindow : -1;
  const std::string unfinished = std::string(record_path) + ".new";
  WriteFileBytes(unfinished, std::to_string(show) + " " + target);
  return MoveFileA(unfinished.c_str(), record_path) ? 0 : 1;
}

}  // namespace drive
