#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "profile/catalogue.h"

namespace host {

// What in an entry of the row's list section can't mean what was meant: a sentence each, in the
// code page. None for an entry that is in order.
std::vector<std::string> CheckListEntry(const hostscope::CatalogueRow& row,
                                        const std::string& entry);

// A key written as other programs write it (Computer\HKEY_USERS\A, HKU/A, ...), as an entry names
// it; empty for a text that means no key.
std::string RegistryEntryMeant(std::string_view text);

}  // namespace host
