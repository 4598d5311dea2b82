#pragma once

#include "platform/win32.h"
#include "report/item.h"

namespace hostscope {

// Writes the names of the key's subkeys, each followed by its own contents when the whole subtree
// is asked for, then the key's values, every line behind four blanks for each level. Nothing for a
// key that says nothing about itself.
void DumpRegistryKey(ReportWriter& report, HKEY key, bool subtree, unsigned level);

// The keys that the profile names, one after another; false when none of them could be opened.
bool WriteRegistryKeys(ItemRun& run);

}  // namespace hostscope
