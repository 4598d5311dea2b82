// The versions of the libraries that a profile names.
#pragma once

#include <span>

#include "report/item.h"

namespace hostscope {

// The version of a library, by its name (found the way the system finds one to load) or path, as
// "%u.%u.%u.%u": what its own DllGetVersion answers; where it cannot be loaded, has no such
// function or refuses, the file version of its version resource. False, the text empty, when
// neither tells. Loading the library runs its initialisation.
bool ReadDllVersion(const char* name, std::span<char> text);

// The DLLS VERSIONS section below its banner; false when no library's version was found.
bool WriteDllVersions(ItemRun& run);

}  // namespace hostscope
