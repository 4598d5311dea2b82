#include "util/file_version.h"

#include <algorithm>
#include <cstring>

#include "platform/win32.h"
#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr std::uint32_t kFixedRecordSignature = 0xFEEF04BD;
inline constexpr std::size_t kFixedRecordSize = 52;
// The two numbers of the file version.
inline constexpr std::size_t kFixedVersionPlace = 8;
inline constexpr std::size_t kFixedVersionEnd = 16;

inline constexpr std::uint32_t kUsEnglishInCodePage1252 = 0x040904E4;
// Longer names are in no resource that a probe asks.
inline constexpr std::size_t kLongestItem = 64;

std::uint32_t NumberAt(std::span<const char> bytes, std::size_t place) {
  std::uint32_t number = 0;
  std::memcpy(&number, bytes.data() + place, sizeof number);
  return number;
}

}  // namespace

VersionResource::VersionResource(const char* path) {
  DWORD unused = 0;
  const DWORD size = GetFileVersionInfoSizeA(path, &unused);
  if (size == 0 || size >= static_cast<DWORD>(INT32_MAX)) return;
  block_ = HeapBuffer(static_cast<std::size_t>(size) + 1);
  if (block_.present() && !GetFileVersionInfoA(path, 0, size, block_.data())) block_.Release();
}

// The bytes from the value on to the end of the block, and the length that the system states for
// the value (in bytes, of a text in characters). No bytes when there is no such value, or when it
// is said to lie somewhere else.
std::span<const char> VersionResource::Find(const char* path, std::size_t& stated_length) {
  // Old systems cut the path up in place while they search.
  char own_path[kLongestItem + 32];
  CopyText(own_path, path);
  void* value = nullptr;
  UINT length = 0;
  stated_length = 0;
  if (!VerQueryValueA(block_.data(), own_path, &value, &length) || value == nullptr) return {};
  const std::uintptr_t place =
      reinterpret_cast<std::uintptr_t>(value) - reinterpret_cast<std::uintptr_t>(block_.data());
  if (place >= block_.size()) return {};
  stated_length = length;
  return {block_.data() + place, block_.size() - place};
}

bool VersionResource::FindFixedVersion(RecordLength length, FileVersion& version) {
  std::size_t stated_length = 0;
  const std::span<const char> record = Find("\\", stated_length);
  if (record.size() < kFixedVersionEnd || NumberAt(record, 0) != kFixedRecordSignature)
    return false;
  if (length == RecordLength::kExact && stated_length != kFixedRecordSize) return false;
  version = {NumberAt(record, kFixedVersionPlace),
             NumberAt(record, kFixedVersionPlace + sizeof(std::uint32_t))};
  return true;
}

// Language and code page as a string table is named by them: the language in the high half.
std::uint32_t VersionResource::FindTranslation() {
  std::size_t stated_length = 0;
  const std::span<const char> value = Find("\\VarFileInfo\\Translation", stated_length);
  if (std::min(value.size(), stated_length) < sizeof(std::uint32_t))
    return kUsEnglishInCodePage1252;
  const std::uint32_t translation = NumberAt(value, 0);
  return translation << 16 | translation >> 16;
}

void VersionResource::FindText(const char* item, std::span<char> text) {
  if (TextLength(item) > kLongestItem) return;
  char table[32] = {};
  wsprintfA(table, "\\%s\\%08.8lX\\", "StringFileInfo",
            static_cast<unsigned long>(FindTranslation()));
  char path[sizeof table + kLongestItem] = {};
  wsprintfA(path, "%s%s", table, item);
  std::size_t stated_length = 0;
  const std::span<const char> value = Find(path, stated_length);
  if (value.empty()) return;
  // The length is no help: some resources count bytes in it, and the system says 0 for those that
  // count too many. The block ends with a zero that the file has no part in.
  CopyText(text.data(), std::min(text.size(), value.size()), value.data());
}

void FormatFileVersion(const FileVersion& version, std::span<char> text) {
  char formatted[24] = {};
  wsprintfA(formatted, "%u.%u.%u.%u", HIWORD(version.most_significant),
            LOWORD(version.most_significant), HIWORD(version.least_significant),
            LOWORD(version.least_significant));
  CopyText(text.data(), text.size(), formatted);
}

bool ReadFileVersionItem(const char* path, const char* item, std::span<char> text) {
  if (text.empty()) return false;
  text.front() = '\0';
  VersionResource resource(path);
  if (!resource.present()) return false;
  FileVersion version;
  if (SameTextIgnoringCase(item, "FileVersion") &&
      resource.FindFixedVersion(VersionResource::RecordLength::kExact, version)) {
    FormatFileVersion(version, text);
  } else {
    resource.FindText(item, text);
  }
  return true;
}

}  // namespace hostscope
