#include "tests/windows/opened_target.h"

#include <cstddef>
#include <cstring>

namespace drive {
namespace {

std::string InQuotes(const std::string& text) {
  return "\"" + text + "\"";
}

// A copy of this program without a console, whose window would cover the screen.
std::string MakeWindowless(const Folder& folder) {
  std::string image = ReadFileBytes(OwnProgram()).value();
  IMAGE_DOS_HEADER start;
  std::memcpy(&start, image.data(), sizeof(start));
  const size_t subsystem = start.e_lfanew + offsetof(IMAGE_NT_HEADERS32, OptionalHeader.Subsystem);
  image[subsystem] = IMAGE_SUBSYSTEM_WINDOWS_GUI;
  folder.Write("opening.exe", image);
  return folder.Path("opening.exe");
}

}  // namespace

OpeningProgram::OpeningProgram(const Folder& folder, const std::string& kind)
    : record_path_(folder.Path("opened.txt")),
      command_(RegistryValue::Text(HKEY_CLASSES_ROOT, kind + "\\shell\\open\\command", "",
                                   InQuotes(MakeWindowless(folder)) + " " + kRecordSwitch + " " +
                                       InQuotes(record_path_) + " \"%1\"")) {}

std::optional<OpenedTarget> OpeningProgram::WaitForTarget() const {
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
