// Reading version resources of files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "util/heap.h"

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

// A file's version resource, read as a whole. Nothing in it is believed: whatever lengths it
// states, nothing outside of the bytes that were read is looked at.
class VersionResource {
 public:
  // A bare name is looked for as the system looks for a library. Absent when the file has no such
  // resource, when it cannot be read, and without memory.
  explicit VersionResource(const char* path);
  bool present() const { return block_.present(); }

  enum class RecordLength { kExact, kAny };  // whether the fixed record must say 52 bytes
  // The file version of the fixed record; false, `version` untouched, when there is none.
  bool FindFixedVersion(RecordLength length, FileVersion& version);
  // A string of the first translation's table, cut to the field; a string that is not there leaves
  // the field as it was.
  void FindText(const char* item, std::span<char> text);

 private:
  std::span<const char> Find(const char* path, std::size_t& stated_length);
  std::uint32_t FindTranslation();

  HeapBuffer block_;
};

// One item of the file's version resource as a text, cut to the field. "FileVersion" (case does not
// count) gives the four numbers of the fixed record; where there is no such record, and for any
// other item, the string of that name in the string table of the resource's first translation (US
// English, code page 1252, when it names none). False when the file has no version resource or it
// cannot be read; true with an empty text when the resource does not hold the item.
bool ReadFileVersionItem(const char* path, const char* item, std::span<char> text);

}  // namespace hostscope
