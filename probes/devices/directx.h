// The DirectX release, and whether the display driver reports 3D acceleration.
#pragma once

#include <cstdint>

#include "report/item.h"

namespace hostscope {

// A release is a number: the release times 0x100, 0x601 for 6.1; 0 is none, and 0x301 is release 3
// with a DirectDraw that does not work.

// Found by trying what each release added: the first check that fails tells. A debugger is told
// why. Slow: libraries are loaded and freed, and the display driver is asked.
std::uint32_t DetectDirectXVersion();

// "6.1", "No DirectX installed"; "Unknown version" for any other number.
const char* DirectXVersionText(std::uint32_t version);

// The release in words, behind it what the registry calls it where it does, and the end of the
// line: "8 or better (4.08.01.0881)\r\n". The text holds at least kFormattedSize characters. The
// result is the release as a number.
std::uint32_t FormatDirectXVersion(std::span<char> text);

// False, and not accelerated, below release 5 and when DirectDraw does not tell.
bool Has3DAcceleration(bool& accelerated);

// The items.
bool WriteDirectXVersion(ItemRun& run);
bool Format3DAcceleration(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
