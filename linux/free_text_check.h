// The sections of a profile that are one text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "linux/profile_finding.h"
#include "platform/host/profile_file.h"

namespace host {

// What is wrong with the text section `name` of the profile, whose content is given as it stands
// and taken apart. No more than `most` characters of its text are kept.
std::vector<ProfileFinding> CheckFreeText(const std::string& content, const ProfileFile& file,
                                          const char* name, std::size_t most);

}  // namespace host
