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

// The text between quotes, cut when it is long.
std::string QuotedForFinding(std::string_view text);

}  // namespace host
