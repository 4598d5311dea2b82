// Folders whose paths stand in the registry, for the listing of folders.
#pragma once

#include <cstdint>

#include "platform/win32.h"
#include "report/item.h"
#include "util/text_index.h"

namespace hostscope {

// The numbers at the end of an entry.
struct ScanNumbers {
  std::uint32_t subtree = 0;
  std::uint32_t folder = 0;  // that of the folders found
};

// Takes them from the entry's last one or two fields, which are cut off it.
ScanNumbers CutScanNumbers(char* entry);

// Whether the text is a folder's path: a letter, ":" and one backslash with no "?", "*", "<" or ">"
// anywhere; or behind two backslashes a server, a share and a folder below it. Whether there is
// such a folder does not count.
bool IsFolderPathText(const char* text);

// Appends "path,folder_number" for every value of the key, with the subtree also of all keys below
// it, whose text is a folder's path, unless that is an existing plain file or the entry is in the
// list.
void ScanKeyForFolders(HKEY key, bool subtree, std::uint32_t folder_number, TextIndex& folders);

// Scans the keys that the profile names and extends its list of folders; writes nothing. A key that
// does not open is passed over; the scan never fails.
bool ScanKeys(ItemRun& run);

}  // namespace hostscope
