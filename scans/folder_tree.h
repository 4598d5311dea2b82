// The trees of the folders that a profile, or the scan of registry keys, names.
#pragma once

#include "report/item.h"

namespace hostscope {

// The entry, in any case, that stands for the folder of the program itself.
inline constexpr char kRunFolderEntry[] = "<Run Folder>";

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
