// The files of a machine: drive letters that stand for Linux folders, and the user's own Linux
// files.
//
// A path with a letter and a colon names a file of a drive, which the program can only read. A path
// that begins with "/", or a relative one while the current folder is a Linux folder, names a file
// of the user's own, which it may write. Both kinds of separator count in both kinds of path, and
// names are compared without regard to case unless a file of exactly that name is there.
//
// Paths of the interface are in code page 1252; std::filesystem paths are UTF-8, as on disk. A
// character of a name on disk that the code page does not have is a "?" in the interface. On a
// drive such a name can't be used, as on Windows, but the short one that searches give beside it
// (folder_listings.h); among the user's own files it is found by its "?", too, so that the program
// can stand in a folder of any name.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/folder_listings.h"
#include "platform/host/handles.h"
#include "platform/host/windows_types.h"

namespace host {

// What an open file lets its owner do, and what it lets others do meanwhile.
struct FileUse {
  bool read = false;
  bool write = false;
  bool share_read = false;
  bool share_write = false;
};

// The numbers of CREATE_NEW and its kin.
enum class Disposition { kCreateNew = 1, kCreateAlways, kOpenExisting, kOpenAlways, kTruncate };

struct FileClaims;

// An open file ("file" among the open objects); it gives its descriptor, and its claim on the file,
// back when it goes. Nothing is buffered: what is written is in the Linux file at once.
class OpenFile : public Object {
 public:
  // The descriptor becomes the object's.
  OpenFile(int descriptor, const FileUse& use);
  ~OpenFile() override;
  int descriptor() const { return descriptor_; }
  const FileUse& use() const { return use_; }

 private:
  friend struct FileClaims;
  int descriptor_;
  FileUse use_;
  dev_t device_ = 0;
  ino_t number_ = 0;
  std::shared_ptr<FileClaims> claims_;  // none: nobody else may notice it
};

class FileSystem {
 public:
  // Where a path of the program leads.
  struct Place {
    std::filesystem::path path;  // on disk; its last component need not exist
    std::string name;            // a full path of the program: "C:\DIR\FILE", "/home/u/file"
    bool own = false;            // one of the user's own files, not of a drive
    bool exists = false;
    bool folder = false;
    bool root = false;  // the topmost folder of its drive, or "/"
  };

  using Entry = FolderEntry;

  FileSystem();

  // The drive's files are those of the folder. A second call for the letter replaces the first.
  void MountDrive(char letter, std::filesystem::path folder);
  // The folder behind a drive letter, or none.
  std::optional<std::filesystem::path> DriveFolder(char letter) const;

  // Finds the place that a path names. Answers 0 also when only the last component is missing
  // (`exists` is false then); else the error: ERROR_PATH_NOT_FOUND for a missing folder on the way,
  // a drive that is not there or an empty path; ERROR_INVALID_NAME; ERROR_FILENAME_EXCED_RANGE.
  DWORD Locate(std::string_view path, Place& place) const;

  // The path from the root on, by the text alone; one that can't be taken apart is as it was given.
  std::string FullPath(std::string_view path) const;

  // Opens or makes a file as CreateFileA does; `existed` (may be null) says whether it was there
  // before. Answers 0 or the error. Files that are open in this machine keep each other out by what
  // they share, as on Windows; a file open for neither reading nor writing keeps nobody out.
  DWORD Open(std::string_view path, const FileUse& use, Disposition disposition,
             std::shared_ptr<OpenFile>& file, bool* existed = nullptr) const;
  // Searches give this time (file_time.h) for the path, a full one of a drive, or for everything on
  // drives that has none of its own ("*"), and not that of the file on disk.
  void StateWriteTime(std::string_view path, std::uint64_t time);
  // Of a full path, as StatedSize; absent when nothing is stated.
  std::optional<std::uint64_t> StatedWriteTime(std::string_view path) const;

  // Everything in a file, shared with every other use of it; 0 or the error.
  DWORD ReadWhole(std::string_view path, std::string& content) const;

  // From now on a search that finds the file tells this size in place of its own: a large file of
  // the machine may be a small one on disk.
  void StateSize(std::string_view path, std::uint64_t size);
  std::optional<std::uint64_t> StatedSize(std::string_view path) const;
  // The path of a file that has a stated size and is not there; empty: there is none.
  std::string MissingSizedFile() const;

  // Whether searches tell the short names; a volume may have been made without them.
  bool tells_short_names = true;

  // What is in a folder, sorted by name without regard to case; 0 or the error.
  DWORD List(const Place& folder, std::vector<Entry>& entries) const;

  // The current folder as a full path of the program ("C:\" at first). Making another one current
  // answers 0, ERROR_FILE_NOT_FOUND, ERROR_DIRECTORY (not a folder), ERROR_ACCESS_DENIED or an
  // error of Locate.
  std::string CurrentFolder() const;
  DWORD SetCurrentFolder(std::string_view path);

 private:
  using StatedNumbers = std::map<std::string, std::uint64_t, NoCaseLess>;  // by full path
  std::optional<std::uint64_t> FindStated(const StatedNumbers& numbers,
                                          std::string_view path) const;

  mutable std::mutex mutex_;  // guards the drives, the current folder and what is stated
  std::map<char, std::filesystem::path> drives_;
  std::string current_folder_ = "C:\\";
  StatedNumbers stated_sizes_;
  StatedNumbers write_times_;  // "*": of every path without one of its own
  std::shared_ptr<FileClaims> claims_;
  mutable FolderListings listings_;
};

// The platform's error code for an errno.
DWORD ErrorFromErrno(int number);

}  // namespace host
