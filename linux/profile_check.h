// What in a profile can't do what its writer meant. The program itself takes no notice of any of
// it.
#pragma once

#include <string>
#include <vector>

#include "linux/profile_finding.h"

namespace host {

// The findings in a profile's whole content, whatever bytes it has, in the order of the lines.
std::vector<ProfileFinding> CheckProfile(const std::string& content);

}  // namespace host
