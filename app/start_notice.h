#pragma once

#include <span>

namespace hostscope {

// The last line of every list: of a notice, and of a run.
inline constexpr char kPressAnyKey[] = "Press any key...";

// Whether the first argument asks for a notice instead of naming a profile: "a", "h" or "?", in
// either case.
bool AsksForNotice(const char* ini_argument);

// The lines that the dialog shows when there is no profile: the credits or the usage, if the
// argument asks for them, else that no profile was found.
std::span<const char* const> StartNotice(const char* ini_argument);

}  // namespace hostscope
