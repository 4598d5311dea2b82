// Where the program stands and how paths are put together.
#pragma once

#include "util/text.h"

namespace hostscope {

// Room for the longest path the system may give for the program's own file, terminator included.
inline constexpr std::size_t kModulePathSize = 32767;

// The full path of the program file; none when the platform cannot give it.
OwnedText ModulePath();

// The module path up to, not including, its last backslash; none when there is no module path.
OwnedText ProgramFolder();

// Removes one trailing backslash or slash, if there is one.
void StripSeparator(char* folder);

// Makes the folder the current one; false when it cannot be. "C:" is the root of the drive here, as
// the folder of a program in a root is written; to the platform it is the drive's current folder.
bool EnterFolder(const char* folder);

// The path of a name in a folder. A name that holds a colon anywhere is a complete path and comes
// back unchanged. Otherwise folder and name are joined by exactly one backslash; an empty name
// gives the folder, an empty folder a backslash and the name. None when there is no memory.
OwnedText JoinPath(const char* folder, const char* name);

// The path from the root on, whatever the current folder: for other programs, which have another
// one. A path that the platform can't complete comes back unchanged; none when there is no memory.
OwnedText FullPath(const char* path);

}  // namespace hostscope
