#include "linux/profile_finding.h"

namespace host {

std::string QuotedForFinding(std::string_view text) {
  constexpr std::size_t kMost = 60;
  return '"' + std::string(text.substr(0, kMost)) + (text.size() > kMost ? "...\"" : "\"");
}

std::string SectionHeader(std::string_view section) {
  return "[" + std::string(section) + "]";
}

}  // namespace host
