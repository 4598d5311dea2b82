#pragma once

#include <cstdint>

// "cvid" as the number that the platform knows a codec by.
constexpr std::uint32_t FourCharacterCode(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 3; i >= 0; --i)
    code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}
