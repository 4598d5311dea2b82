// Tables of what numbers mean.
#pragma once

#include <cstdint>
#include <span>

namespace hostscope {

struct NumberText {
  std::uint32_t number;
  const char* text;
};

// The text of the number's row; `otherwise` for a number that has none.
constexpr const char* TextOfNumber(std::span<const NumberText> rows, std::uint32_t number,
                                   const char* otherwise) {
  for (const NumberText& row : rows) {
    if (row.number == number) return row.text;
  }
  return otherwise;
}

}  // namespace hostscope
