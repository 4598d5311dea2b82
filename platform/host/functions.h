// The names of the layer's functions: what a fault may be stated for, and what a call is counted
// by.
#pragma once

#include <string_view>

namespace host {

// Case counts. A new function of the layer gets its row in the table; calling one without a row
// ends the process with a message, so that a misspelt name never goes unnoticed.
// GetLastError and SetLastError cannot fail and have none.
bool IsLayerFunction(std::string_view name);

}  // namespace host
