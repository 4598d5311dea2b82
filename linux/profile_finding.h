// What in a profile can't do what its writer meant, and the words that all findings share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

struct ProfileFinding {
  std::size_t line;    // from 1
  std::string reason;  // in the code page: what happens, and what to write instead
};

// The text between quotes, cut when it is long.
std::string QuotedForFinding(std::string_view text);

// The section's name between brackets.
std::string SectionHeader(std::string_view section);

}  // namespace host
