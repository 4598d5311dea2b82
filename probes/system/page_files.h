// The page files with their sizes and limits.
#pragma once

#include "report/item.h"
#include "report/page_file_record.h"

namespace hostscope {

// Takes the next page file, "name minimum maximum" with single blanks, off the front of NT's list
// of them; what is missing at the end stays empty, and so does the size. Longer words are cut to
// their fields. False when nothing is left.
bool TakePageFile(const char*& list, PageFileRecord& record);

// Fills the context's page-file list anew. NT: what its registry lists; false when it does not.
// Windows 95/98/Me: the one swap file. False also when there is no memory for a list.
bool ReadPageFiles(ProbeContext& context);

// A line for each page file, or the bare label; false when they cannot be read.
bool WritePageFiles(ItemRun& run);

}  // namespace hostscope
