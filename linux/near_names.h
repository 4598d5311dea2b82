// The sections and keys that a wrong name may have been meant for.
#pragma once

#include <string_view>

#include "profile/catalogue.h"

namespace host {

// A row of the section that the name is a slip of, or whose heading in the report it is; null for
// none.
const hostscope::CatalogueRow* NearestSection(std::string_view name);

// The row of the key that the name is a slip of, sooner one of the section itself than of another;
// null for none.
const hostscope::CatalogueRow* NearestKey(std::string_view section, std::string_view key);

}  // namespace host
