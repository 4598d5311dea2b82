// 16-bit texts of the platform.
#pragma once

#include <cstddef>
#include <span>

#include "platform/win32.h"

namespace hostscope {

// The first `length` units in the system's code page, as a zero-terminated text; an empty one when
// they cannot be converted or do not fit.
void NarrowText(const WCHAR* wide, std::size_t length, std::span<char> text);

}  // namespace hostscope
