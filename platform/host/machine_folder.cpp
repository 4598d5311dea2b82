#include "platform/host/machine_folder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/ini_file.h"
#include "platform/host/machine_facts.h"
#include "platform/host/reg_file.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// What is in a folder, in the order of the names' bytes, so that every system reads it alike.
std::vector<fs::path> SortedEntries(const fs::path& folder, std::error_code& failure) {
  std::vector<fs::path> entries;
  for (fs::directory_iterator next(folder, failure); !failure && next != fs::directory_iterator();
       next.increment(failure)) {
    entries.push_back(next->path());
  }
  std::sort(entries.begin(), entries.end(), [](const fs::path& a, const fs::path& b) {
    return a.filename().native() < b.filename().native();
  });
  return entries;
}

bool IsRegFile(const fs::path& path) {
  return EqualNoCase(path.extension().native(), ".reg");
}

// Hidden files and descriptions for people are no part of the machine and do no harm.
bool IsNoPart(const fs::path& path) {
  return path.filename().native().starts_with('.') ||
         EqualNoCase(path.extension().native(), ".md") ||
         EqualNoCase(path.extension().native(), ".txt");
}

std::optional<LoadError> LoadFacts(const fs::path& folder, Machine& machine) {
  std::ifstream stream(folder / "machine.ini", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream.is_open() || stream.bad()) return LoadError{"machine.ini", 0, "it cannot be read"};
  std::vector<IniSection> sections;
  auto error = ReadIniText(bytes, sections);
  if (!error) error = StateMachineFacts(sections, machine);
  if (error) error->file = "machine.ini";
  return error;
}

std::optional<LoadError> MountDrives(const fs::path& folder, Machine& machine) {
  std::error_code failure;
  const std::vector<fs::path> drives = SortedEntries(folder, failure);
  if (failure) return LoadError{"drives", 0, "it cannot be read"};
  for (const fs::path& drive : drives) {
    const std::string name = drive.filename().native();
    if (name.starts_with('.')) continue;
    const char letter = UpperCase(name.front());
    if (name.size() != 1 || letter < 'A' || letter > 'Z' || !fs::is_directory(drive, failure)) {
      return LoadError{"drives/" + name, 0, "it is no folder named by a drive letter"};
    }
    if (machine.files.DriveFolder(letter)) {
      return LoadError{"drives/" + name, 0, "the drive is there twice"};
    }
    machine.files.MountDrive(letter, drive);
  }
  return std::nullopt;
}

}  // namespace

std::optional<LoadError> LoadMachine(const fs::path& folder, Machine& machine) {
  std::error_code failure;
  const std::vector<fs::path> entries = SortedEntries(folder, failure);
  if (failure) return LoadError{folder.native(), 0, "the machine folder cannot be read"};
  // Before the registry: whose key HKEY_CURRENT_USER is, is among the facts.
  if (auto error = LoadFacts(folder, machine)) return error;
  for (const fs::path& entry : entries) {
    const std::string name = entry.filename().native();
    std::optional<LoadError> error;
    if (name == "drives") {
      error = MountDrives(entry, machine);
    } else if (IsRegFile(entry)) {
      error = ReadRegFile(entry, machine.registry);
    } else if (name != "machine.ini" && !IsNoPart(entry)) {
      error = LoadError{name, 0, "a machine folder has no part of that name"};
    }
    if (error) return error;
  }
  if (const std::string path = machine.files.MissingSizedFile(); !path.empty()) {
    return LoadError{"machine.ini", 0, "[FileSizes] " + Utf8FromCodePage(path) + ": no such file"};
  }
  return std::nullopt;
}

}  // namespace host
