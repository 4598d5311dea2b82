#pragma once

#include <cstddef>
#include <cstdint>

namespace hostscope {

// The number at the start of a profile entry's text:
//   0x or 0X, then hexadecimal digits     read as hexadecimal
//   0 followed by a digit 0 to 7          read as octal from that digit on
//   a minus sign, then decimal digits     negated (two's complement)
//   otherwise                             decimal digits
// It ends at the first other character. No blank is skipped and no plus sign taken; a text without
// leading digits gives 0, and overflow wraps modulo 2^32.
std::uint32_t ParseProfileNumber(const char* text);

// Room for the text of the largest 64-bit number, terminator included.
inline constexpr std::size_t kUnsigned64Size = 21;

// The number in decimal digits; the platform's formatter knows no 64-bit numbers.
void FormatUnsigned64(std::uint64_t number, char (&text)[kUnsigned64Size]);

}  // namespace hostscope
