// What in a profile can't do what its writer meant. The program itself takes no notice of any of
// it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct ProfileFinding {
  std::size_t line;    // from 1
  std::string reason;  // in the code page: what happens, and what to write instead
};

// The findings in a profile's whole content, whatever bytes it has, in the order of the lines.
std::vector<ProfileFinding> CheckProfile(const std::string& content);

}  // namespace host
