#include "scans/folder_tree.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "platform/win32.h"
#include "util/file_version.h"
#include "util/handles.h"
#include "util/numbers.h"
#include "util/paths.h"
#include "util/registry.h"
#include "util/string_list.h"
#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr char kMargin[] = "|   ";
inline constexpr char kAllEntries[] = "*.*";

// What stands where something could not be listed.
inline constexpr char kPathTooLong[] = "(path is too long)";
inline constexpr char kLink[] = "(link, not followed)";
inline constexpr char kNameUnusable[] = "(name can not be used)";
inline constexpr char kNoMemory[] = "(not enough memory)";
inline constexpr char kSubfoldersMissing[] = "(not all subfolders could be listed)";
inline constexpr char kFilesMissing[] = "(not all files could be listed)";
inline constexpr char kFileUnread[] = "(file can not be read)";

bool IsFolder(const WIN32_FIND_DATAA& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsSubfolder(const WIN32_FIND_DATAA& entry) {
  return IsFolder(entry) && !SameText(entry.cFileName, ".") && !SameText(entry.cFileName, "..");
}

// One path of at most 259 characters that grows and shrinks by its last names.
class TreePath {
 public:
  std::size_t length() const { return length_; }
  const char* c_str() const { return text_; }
  // False, the path as it was, when it does not fit.
  bool Set(const char* path) {
    length_ = 0;
    return AppendText(path);
  }
  bool Append(const char* name) {
    const std::size_t before = length_;
    if (AppendText("\\") && AppendText(name)) return true;
    Cut(before);
    return false;
  }
  void Cut(std::size_t length) {
    length_ = length;
    text_[length_] = '\0';
  }

 private:
  bool AppendText(const char* text) {
    const std::size_t added = TextLength(text);
    if (added >= sizeof text_ - length_) return false;
    CopyText(text_ + length_, sizeof text_ - length_, text);
    length_ += added;
    return true;
  }

  char text_[MAX_PATH] = {};
  std::size_t length_ = 0;
};

// What leads to an entry of a folder; null when nothing does. A "?" in a name is a character that
// the code page does not have, and in a path it is a pattern or an error.
const char* UsableName(const char* name, const char* alternate) {
  if (FindCharacter(name, '?') == nullptr) return name;
  return *alternate != '\0' && FindCharacter(alternate, '?') == nullptr ? alternate : nullptr;
}

// The listing of one folder with those below it. The folders on the way down stand on the heap: a
// worker thread's stack may be tiny, and trees are deep.
class TreeListing {
 public:
  TreeListing(ReportWriter& report, bool whole) : report_(report), whole_(whole) {}
  void List(const char* folder);

 private:
  struct Folder {
    explicit Folder(const char* pattern) : subfolders(pattern) {}
    FileSearch subfolders;
    bool begun = false;
    int level = 1;
    std::size_t path_length = 0;
    std::unique_ptr<Folder> outer;
  };

  const char* Enter();
  const char* EnterSubfolder(const WIN32_FIND_DATAA& entry);
  void Leave();
  bool NextEntry();
  void ShowSubfolder(const WIN32_FIND_DATAA& entry);
  void ListFiles();
  bool GatherFiles(StringList& names);
  void WriteFile(const char* name, const char* alternate);
  void WriteFileFacts();
  void WriteMargin(int width);
  void WriteNote(int level, const char* note);
  void EndLevel(int level);

  ReportWriter& report_;
  const bool whole_;
  TreePath path_;  // of the innermost folder, between steps
  std::unique_ptr<Folder> innermost_;
  bool separator_pending_ = false;  // something was written since the last separator
};

void TreeListing::List(const char* folder) {
  const char* const obstacle = path_.Set(folder) ? Enter() : kPathTooLong;
  if (obstacle != nullptr) WriteNote(1, obstacle);
  while (innermost_ != nullptr) {
    if (NextEntry()) {
      const WIN32_FIND_DATAA& entry = innermost_->subfolders.entry();
      if (IsSubfolder(entry)) ShowSubfolder(entry);
    } else {
      ListFiles();
      Leave();
    }
  }
}

// Makes the folder of the path the innermost one; else says why it cannot be listed.
const char* TreeListing::Enter() {
  const std::size_t length = path_.length();
  if (!path_.Append(kAllEntries)) return kPathTooLong;
  std::unique_ptr<Folder> folder(new (std::nothrow) Folder(path_.c_str()));
  path_.Cut(length);
  if (folder == nullptr) return kNoMemory;
  folder->path_length = length;
  if (innermost_ != nullptr) folder->level = innermost_->level + 1;
  folder->outer = std::move(innermost_);
  innermost_ = std::move(folder);
  return nullptr;
}

const char* TreeListing::EnterSubfolder(const WIN32_FIND_DATAA& entry) {
  if ((entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return kLink;
  const char* const name = UsableName(entry.cFileName, entry.cAlternateFileName);
  if (name == nullptr) return kNameUnusable;
  return path_.Append(name) ? Enter() : kPathTooLong;
}

void TreeListing::Leave() {
  EndLevel(innermost_->level);
  innermost_ = std::move(innermost_->outer);
  if (innermost_ != nullptr) path_.Cut(innermost_->path_length);
}

bool TreeListing::NextEntry() {
  Folder& folder = *innermost_;
  if (folder.begun) return folder.subfolders.Next();
  folder.begun = true;
  return folder.subfolders.found();
}

void TreeListing::ShowSubfolder(const WIN32_FIND_DATAA& entry) {
  const int level = innermost_->level;
  char name[MAX_PATH];
  CopyText(name, entry.cFileName);
  CharUpperA(name);
  separator_pending_ = true;
  WriteMargin(level - 1);
  report_.WriteFormatted("|---\\%s\r\n", name);
  if (!whole_) return;
  if (const char* const obstacle = EnterSubfolder(entry)) {
    path_.Cut(innermost_->path_length);
    WriteNote(level + 1, obstacle);
    EndLevel(level + 1);
  }
}

void TreeListing::ListFiles() {
  const int level = innermost_->level;
  if (innermost_->subfolders.broke_off()) WriteNote(level, kSubfoldersMissing);
  StringList names;
  const bool complete = GatherFiles(names);
  names.Sort();
  if (names.count() > 0) separator_pending_ = true;
  for (int i = 0; i < names.count(); ++i)
    WriteFile(names.Get(i), names.Companion(i));
  if (!complete) WriteNote(level, kFilesMissing);
}

// In lower case, each with its alternate name; false when some may be missing.
bool TreeListing::GatherFiles(StringList& names) {
  if (!names.Create() || !path_.Append(kAllEntries)) return false;
  FileSearch files(path_.c_str());
  path_.Cut(innermost_->path_length);
  for (bool found = files.found(); found; found = files.Next()) {
    if (IsFolder(files.entry())) continue;
    char name[MAX_PATH];
    CopyText(name, files.entry().cFileName);
    if (names.Append(CharLowerA(name), files.entry().cAlternateFileName) < 0) return false;
  }
  return !files.broke_off();
}

void TreeListing::WriteFile(const char* name, const char* alternate) {
  WriteMargin(innermost_->level - 1);
  report_.WriteFormatted("|---%-25s", name);
  const char* const usable = UsableName(name, alternate);
  if (usable == nullptr) {
    report_.WriteText(kNameUnusable);
  } else if (path_.Append(usable)) {
    WriteFileFacts();
    path_.Cut(innermost_->path_length);
  } else {
    report_.WriteText(kPathTooLong);
  }
  report_.WriteText(kLineEnd);
}

// Of the file that the path leads to: the date, the size and the version.
void TreeListing::WriteFileFacts() {
  char version[kVersionTextSize];
  ReadFileVersionItem(path_.c_str(), "FileVersion", version);
  FileSearch search(path_.c_str());
  if (!search.found()) {
    report_.WriteText(kFileUnread);
    return;
  }
  const WIN32_FIND_DATAA& entry = search.entry();
  SYSTEMTIME written = {};
  FileTimeToSystemTime(&entry.ftLastWriteTime, &written);
  char size[kUnsigned64Size];
  FormatUnsigned64(static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32 | entry.nFileSizeLow,
                   size);
  report_.WriteFormatted("%02i.%02i.%02i%10s b     %s", written.wDay, written.wMonth,
                         written.wYear % 100, size, version);
}

void TreeListing::WriteMargin(int width) {
  for (; width > 0; --width)
    report_.WriteText(kMargin);
}

void TreeListing::WriteNote(int level, const char* note) {
  separator_pending_ = true;
  WriteMargin(level - 1);
  report_.WriteFormatted("|---%s\r\n", note);
}

// A line of its own parts a level's end from what follows, unless it has just been written for a
// level further in.
void TreeListing::EndLevel(int level) {
  if (separator_pending_ && level > 1) {
    WriteMargin(level - 1);
    report_.WriteText(kLineEnd);
  }
  separator_pending_ = false;
}

// What the entry has after its number: a path of its own, or none and the line that says why.
struct FolderPath {
  OwnedText text;
  const char* obstacle = nullptr;
};

inline constexpr char kNoPathMemory[] = "Can not allocate memory for folder path string.\r\n";

FolderPath CopyOfPath(const char* text) {
  FolderPath path{DuplicateText(text)};
  if (!path.text.present()) path.obstacle = kNoPathMemory;
  return path;
}

FolderPath ReadPathFromRegistry(const RegistryPath& place) {
  const RegistryValue value = ReadRegistryValue(place.root, place.subkey, place.item);
  if (!value.present() || *value.data.data() == '\0')
    return {{}, "Can not read registry value.\r\n"};
  FolderPath path{value.AsText()};
  if (!path.text.present()) return {{}, kNoPathMemory};
  const std::size_t length = TextLength(path.text.c_str());
  // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): the text is not empty
  if (path.text.c_str()[length - 1] == '\\') path.text.data()[length - 1] = '\0';
  return path;
}

FolderPath FindPath(const FolderEntry& entry, const char* program_folder) {
  if (entry.program_folder) return CopyOfPath(program_folder);
  return entry.place.root != nullptr ? ReadPathFromRegistry(entry.place) : CopyOfPath(entry.path);
}

bool IsSeparator(char character) {
  return character == '\\' || character == '/';
}

// A relative path no longer leads to the folder once that is the current one.
const char* PathFromInside(const char* path) {
  const bool of_drive =
      path[0] != '\0' && path[1] == ':' && (IsSeparator(path[2]) || path[2] == '\0');
  return of_drive || IsSeparator(path[0]) ? path : ".";
}

bool WriteFolder(ItemRun& run, const char* path, bool whole) {
  run.report.WriteText(path);
  run.report.WriteText(kLineEnd);
  if (!SetCurrentDirectoryA(path)) {
    run.report.WriteText("Folder is not exists.\r\n");
    return false;
  }
  ListFolderTree(run.report, PathFromInside(path), whole);
  EnterFolder(run.program_folder);
  return true;
}

// False when the entry's folder could not be entered.
bool WriteEntry(ItemRun& run, const char* entry) {
  OwnedText folder = DuplicateText(entry);
  FolderPath path{{}, kNoPathMemory};
  bool whole = false;
  if (folder.present()) {
    const FolderEntry parsed = ParseFolderEntry(folder.data());
    whole = parsed.whole;
    path = FindPath(parsed, run.program_folder);
  }
  if (path.obstacle == nullptr) return WriteFolder(run, path.text.c_str(), whole);
  run.report.WriteText(path.obstacle);
  return false;
}

}  // namespace

FolderEntry ParseFolderEntry(char* entry) {
  FolderEntry parsed;
  parsed.whole = ParseProfileNumber(CutAtLastComma(entry)) != 0;
  parsed.program_folder = SameTextIgnoringCase(entry, kRunFolderEntry);
  if (!parsed.program_folder) parsed.place = ParseRegistryPath(entry);
  parsed.path = entry;
  return parsed;
}

void ListFolderTree(ReportWriter& report, const char* folder, bool whole) {
  TreeListing(report, whole).List(folder);
}

bool WriteFolders(ItemRun& run) {
  run.report.WriteText(
      "Folders & Files:      [path]   [last write date]   [size]   [version]\r\n\r\n");
  bool any_entered = false;
  const StringList& entries = run.settings.folders;
  for (int i = 0; i < entries.count(); ++i) {
    any_entered |= WriteEntry(run, entries.Get(i));
    run.report.WriteText(kLineEnd);
  }
  return any_entered;
}

}  // namespace hostscope
