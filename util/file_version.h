// Reading version resources of files.
#pragma once

#include <cstdint>
#include <span>

namespace hostscope {

// A version in the two numbers of a version resource: each holds two parts of 16 bits.
struct FileVersion {
  std::uint32_t most_significant = 0;
  std::uint32_t least_significant = 0;
};

// Room for a version text as the reports show it, terminator included.
inline constexpr std::size_t kVersionTextSize = 50;

// "%u.%u.%u.%u" of the four parts, cut to the field.
void FormatFileVersion(const FileVersion& version, std::span<char> text);

// One item of the file's version resource as a text, cut to the field. "FileVersion" (case does not
// count) gives the four numbers of the fixed record; where there is no such record, and for any
// other item, the string of that name in the string table of the resource's first translation (US
// English, code page 1252, when it names none). False when the file has no version resource or it
// cannot be read; true with an empty text when the resource does not hold the item.
bool ReadFileVersionItem(const char* path, const char* item, std::span<char> text);

}  // namespace hostscope
