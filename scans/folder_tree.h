// The trees of the folders that a profile, or the scan of registry keys, names.
#pragma once

#include "report/item.h"
#include "scans/list_entry.h"

namespace hostscope {

// The entry, in any case, that stands for the folder of the program itself.
inline constexpr char kRunFolderEntry[] = "<Run Folder>";

// What an entry of the profile's list of folders names.
struct FolderEntry {
  bool whole = false;           // with the contents of its subfolders
  bool program_folder = false;  // the program's own
  RegistryPath place;           // of the value that holds the path, when it has a root
  const char* path = nullptr;   // else the path itself
};

// PATH or PATH,number; PATH may be <Run Folder> or a registry path. The entry is cut in place; the
// result points into it.
FolderEntry ParseFolderEntry(char* entry);

// Writes what is in a folder: a line for each subfolder, in the file system's order, then one for
// each file, sorted by name, with its last write date (UTC), size and file version. With `whole` a
// subfolder's own contents follow its line, one level further to the right. A relative path must
// hold for the current folder.
//
// Whatever could not be listed is named by a line in parentheses in its place: a path that does not
// fit into 260 characters, a name that leads nowhere, a link to a folder (it may lead back), a
// listing that broke off, a file that has gone, want of memory. Only a folder that cannot be listed
// at all has no such line.
void ListFolderTree(ReportWriter& report, const char* folder, bool whole);

// The Folders & files section below its banner; false when no folder could be entered.
bool WriteFolders(ItemRun& run);

}  // namespace hostscope
