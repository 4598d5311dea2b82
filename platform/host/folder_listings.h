// What is in the folders on disk, by the names that the program sees.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/windows_types.h"

namespace host {

struct FolderEntry {
  std::string name;  // in code page 1252
  std::filesystem::path path;
  // A short name that leads to nothing else in the folder, for an entry with a "?" in its name; it
  // hangs on the name on disk alone, unless two of a folder would get the same.
  std::string alternate;
};

struct FolderListing {
  std::vector<FolderEntry> entries;  // sorted by name without regard to case
  std::map<std::string, std::filesystem::path, NoCaseLess> alternates;
};

// The name, as the program sees it, of what the path ends in.
std::string NameOnDisk(const std::filesystem::path& path);

// Lists folders and keeps the last listings: a program that asks for each of a folder's files would
// have it read, decoded and sorted every time.
class FolderListings {
 public:
  // As the folder is now; 0 or the error.
  DWORD List(const std::filesystem::path& folder, std::shared_ptr<const FolderListing>& listing);
  // What the name, in any case, or the short name stands for; empty when it is not there.
  std::filesystem::path Find(const std::filesystem::path& folder, std::string_view name);

 private:
  struct Kept {
    std::filesystem::path folder;
    struct stat status;
    std::shared_ptr<const FolderListing> listing;
  };
  std::shared_ptr<const FolderListing> Recall(const std::filesystem::path& folder,
                                              const struct stat& status);
  void Keep(Kept kept);

  std::mutex mutex_;
  std::list<Kept> kept_;  // the last used one first
};

}  // namespace host
