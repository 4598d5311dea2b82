#pragma once

#include <span>

#include "profile/catalogue.h"
#include "profile/profile_settings.h"
#include "util/text.h"

namespace hostscope {

// The first file *.ini of the folder, in the order in which the file system lists them, whose key
// Sign says that it is a profile: its full path, or none.
OwnedText FindProfile(const char* program_folder);

// Reads every row of the catalogue that belongs to the moment, in catalogue order, into the
// settings. Whatever is absent gets its default; a file that cannot be read counts as empty. `work`
// takes whole sections: text beyond its size is not seen. The lists must have been created.
void ReadProfile(const char* profile_path, ReadMoment moment, ProfileSettings& settings,
                 std::span<char> work);

}  // namespace hostscope
