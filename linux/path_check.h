// Why a path in a profile can't be one of Windows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// What a path is for, and what comes of a wrong one.
struct PathUse {
  bool folder;            // else a file
  const char* variables;  // what comes of variables, which are not replaced
  const char* failure;
};

inline constexpr PathUse kListedFolder{true, "nothing is found", "nothing is found"};
inline constexpr PathUse kLibrary{false, "nothing is found", "nothing is found"};
inline constexpr PathUse kReport{false, "the report gets this name", "no report can be written"};

// A sentence for each fault of the path, in the code page; none for a path that may exist.
std::vector<std::string> CheckPath(std::string_view path, const PathUse& use);

}  // namespace host
