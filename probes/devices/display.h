// The display's resolution and colours, now and at most, and the size of the desktop's font.
#pragma once

#include <cstdint>

#include "report/item.h"

namespace hostscope {

struct DisplaySize {
  std::uint32_t width = 0;  // in pixels
  std::uint32_t height = 0;
};

// The larger of the largest size so far and the next mode's: the mode's when it is at least as wide
// and as high. One that is wider but lower, or higher but narrower, is passed over, so the order of
// the modes counts.
constexpr DisplaySize LargerSize(DisplaySize best, DisplaySize mode) {
  return mode.width >= best.width && mode.height >= best.height ? mode : best;
}

// Whether text of that height, in pixels, is what Windows calls small fonts.
constexpr bool IsSmallFontHeight(std::int32_t height) {
  return height <= 16;
}

// Both 0 and false when the display cannot be asked.
bool ReadCurrentResolution(std::uint32_t& width, std::uint32_t& height);
// In one colour plane.
bool ReadCurrentBitsPerPixel(std::uint32_t& bits);

// Over all modes of the current display; 0 and false when the display lists none.
bool FindMaxResolution(std::uint32_t& width, std::uint32_t& height);
bool FindMaxBitsPerPixel(std::uint32_t& bits);

// Of the desktop window's font. Not small, and false, when it cannot be asked for.
bool IsSmallFont(bool& small_font);

// The items: "current: 800x600, maximum: 1024x768" and "current: 8, maximum: 16" with the parts
// whose keys are on, and "Yes" or "No". The first two fail only when neither part can be had.
bool WriteResolution(ItemRun& run);
bool WriteColors(ItemRun& run);
bool FormatLargeFont(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
