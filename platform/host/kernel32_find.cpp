// Searching folders.
//
// A pattern is compared with the whole name, case ignored. "*" stands for any characters and "?"
// for one, and three old rules hold: "*.*" fits every name, "*." names without a dot, and ".*" at
// the end and
// "?" at the end, or before a dot, may stand for nothing.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/file_attributes.h"
#include "platform/host/file_time.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

namespace host {

DWORD ReadFileFacts(const std::filesystem::path& path, FileFacts& facts) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return ErrorFromErrno(errno);
  struct stat own_status;
  const bool is_link = lstat(path.c_str(), &own_status) == 0 && S_ISLNK(own_status.st_mode);
  facts = FileFacts();
  if (S_ISDIR(status.st_mode)) {
    facts.attributes = FILE_ATTRIBUTE_DIRECTORY;
    if (is_link) facts.attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  } else {
    facts.attributes = FILE_ATTRIBUTE_ARCHIVE;
    if ((status.st_mode & S_IWUSR) == 0) facts.attributes |= FILE_ATTRIBUTE_READONLY;
    facts.size = static_cast<std::uint64_t>(status.st_size);
  }
  facts.write_time = static_cast<std::uint64_t>((status.st_mtim.tv_sec + kSecondsFrom1601To1970) *
                                                    kStepsPerSecond +
                                                status.st_mtim.tv_nsec / 100);
  return ERROR_SUCCESS;
}

namespace {

// In a pattern that has been made ready: the three signs of the old rules.
constexpr char kAnyUpToLastDot = '<';  // "*" before a dot
constexpr char kOneOrEnd = '>';        // "?"
constexpr char kDotOrEnd = '"';        // "." before "*" or "?"

std::string PreparePattern(std::string_view pattern) {
  if (pattern == "*.*") return "*";
  const bool ends_in_dot = pattern.ends_with('.');
  std::string result = UpperCase(pattern.substr(0, pattern.find_last_not_of(". ") + 1));
  for (std::size_t i = 0; i < result.size(); ++i) {
    const bool wild = result[i] == '*' || result[i] == '?';
    if (result[i] == '?') result[i] = kOneOrEnd;
    if (i == 0) continue;
    if (wild && result[i - 1] == '.') result[i - 1] = kDotOrEnd;
    if (result[i] == '.' && result[i - 1] == '*') result[i - 1] = kAnyUpToLastDot;
  }
  if (ends_in_dot && result.ends_with('*')) result.back() = kAnyUpToLastDot;
  return result;
}

bool Fits(std::string_view pattern, std::string_view name);

// Whether the pattern's rest fits after any number of the name's characters, of which there are at
// most `most`.
bool FitsAfterAny(std::string_view rest, std::string_view name, std::size_t most) {
  for (std::size_t skipped = 0; skipped <= most; ++skipped) {
    if (Fits(rest, name.substr(skipped))) return true;
  }
  return false;
}

// Both in capitals.
bool Fits(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  const std::string_view rest = pattern.substr(1);
  switch (pattern.front()) {
    case '*':
      return FitsAfterAny(rest, name, name.size());
    case kAnyUpToLastDot: {
      const std::size_t last_dot = name.rfind('.');
      return FitsAfterAny(rest, name, std::min(last_dot, name.size()));
    }
    case kOneOrEnd:
      if (name.empty() || name.front() == '.') return Fits(rest, name);
      return Fits(rest, name.substr(1));
    case kDotOrEnd:
      if (name.empty()) return Fits(rest, name);
      return name.front() == '.' && Fits(rest, name.substr(1));
    default:
      return !name.empty() && name.front() == pattern.front() && Fits(rest, name.substr(1));
  }
}

class Search : public Object {
 public:
  // The folder is named as a full path of the program.
  Search(std::string folder, std::vector<FileSystem::Entry> entries)
      : Object("search"), folder_(std::move(folder)), entries_(std::move(entries)) {}

  // ERROR_NO_MORE_FILES after the last entry. What has gone meanwhile is passed over.
  DWORD Next(WIN32_FIND_DATAA& data) {
    for (; next_ < entries_.size(); ++next_) {
      FileFacts facts;
      const FileSystem::Entry& entry = entries_[next_];
      if (ReadFileFacts(entry.path, facts) != ERROR_SUCCESS) continue;
      ++next_;
      const FileSystem& files = CurrentMachine().files;
      const std::string path = folder_ + "\\" + entry.name;
      facts.size = files.StatedSize(path).value_or(facts.size);
      facts.write_time = files.StatedWriteTime(path).value_or(facts.write_time);
      Fill(entry, facts, data);
      return ERROR_SUCCESS;
    }
    return ERROR_NO_MORE_FILES;
  }

 private:
  static FILETIME TimeOf(std::uint64_t steps) {
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
  }

  // The other two times are given as that of the last writing: Linux doesn't keep both.
  static void Fill(const FileSystem::Entry& entry, const FileFacts& facts, WIN32_FIND_DATAA& data) {
    std::memset(&data, 0, sizeof(data));
    data.dwFileAttributes = facts.attributes;
    data.ftCreationTime = data.ftLastAccessTime = data.ftLastWriteTime = TimeOf(facts.write_time);
    data.nFileSizeHigh = static_cast<DWORD>(facts.size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(facts.size);
    entry.name.copy(data.cFileName, sizeof(data.cFileName) - 1);
    if (CurrentMachine().files.tells_short_names)
      entry.alternate.copy(data.cAlternateFileName, sizeof(data.cAlternateFileName) - 1);
  }

  std::string folder_;
  std::vector<FileSystem::Entry> entries_;
  std::size_t next_ = 0;
};

std::size_t LastComponent(std::string_view path) {
  const std::size_t separator = path.find_last_of("\\/:");
  return separator == std::string_view::npos ? 0 : separator + 1;
}

// The one file that a path without wildcards names, with its name as it is on disk.
DWORD FindOne(const FileSystem& files, std::string_view path, std::string& folder,
              std::vector<FileSystem::Entry>& entries) {
  FileSystem::Place place;
  if (const DWORD error = files.Locate(path, place)) return error;
  const char last = path.back();
  if (!place.exists || place.root || last == '\\' || last == '/') return ERROR_FILE_NOT_FOUND;
  const std::size_t begin = LastComponent(place.name);
  folder = place.name.substr(0, begin - 1);
  FileSystem::Entry entry{NameOnDisk(place.path), place.path, ""};
  // Nothing but its short name leads here.
  if (entry.name.find('?') != std::string::npos)
    entry.alternate = UpperCase(place.name.substr(begin));
  entries = {std::move(entry)};
  return ERROR_SUCCESS;
}

DWORD FindMatching(const FileSystem& files, std::string_view path, std::string& folder,
                   std::vector<FileSystem::Entry>& entries) {
  const std::size_t begin = LastComponent(path);
  FileSystem::Place place;
  if (const DWORD error = files.Locate(std::string(path.substr(0, begin)) + ".", place)) {
    return error;
  }
  if (!place.folder) return place.exists ? ERROR_DIRECTORY : ERROR_PATH_NOT_FOUND;
  if (const DWORD error = files.List(place, entries)) return error;
  // The topmost folder's name has its separator.
  folder = place.root ? place.name.substr(0, place.name.size() - 1) : place.name;
  if (!place.root) {
    entries.insert(entries.begin(), {{".", place.path, ""}, {"..", place.path.parent_path(), ""}});
  }
  const std::string pattern = PreparePattern(path.substr(begin));
  std::erase_if(entries, [&](const auto& e) { return !Fits(pattern, UpperCase(e.name)); });
  return ERROR_SUCCESS;
}

}  // namespace
}  // namespace host

using namespace host;

HANDLE WINAPI FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA data) {
  if (EndableCallFails("FindFirstFileA")) return INVALID_HANDLE_VALUE;
  Machine& machine = CurrentMachine();
  const std::string_view path = pattern == nullptr ? "" : pattern;
  std::string folder;
  std::vector<FileSystem::Entry> entries;
  const bool wild = path.find_first_of("*?", LastComponent(path)) != std::string_view::npos;
  DWORD error = wild ? FindMatching(machine.files, path, folder, entries)
                     : FindOne(machine.files, path, folder, entries);
  const auto search = std::make_shared<Search>(std::move(folder), std::move(entries));
  if (error == ERROR_SUCCESS) error = search->Next(*data);
  if (error == ERROR_SUCCESS) return reinterpret_cast<HANDLE>(machine.handles.Open(search));
  SetLastError(error == ERROR_NO_MORE_FILES ? ERROR_FILE_NOT_FOUND : error);
  return INVALID_HANDLE_VALUE;
}

BOOL WINAPI FindNextFileA(HANDLE handle, LPWIN32_FIND_DATAA data) {
  if (EndableCallFails("FindNextFileA")) return FALSE;
  const auto search =
      CurrentMachine().handles.FindAs<Search>(reinterpret_cast<std::uintptr_t>(handle));
  const DWORD error = search == nullptr ? ERROR_INVALID_HANDLE : search->Next(*data);
  if (error == ERROR_SUCCESS) return TRUE;
  SetLastError(error);
  return FALSE;
}

BOOL WINAPI FindClose(HANDLE handle) {
  if (CallFails("FindClose")) return FALSE;
  HandleTable& handles = CurrentMachine().handles;
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  if (handles.FindAs<Search>(value) != nullptr && handles.Close(value)) return TRUE;
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
}
