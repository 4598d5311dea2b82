#include "scans/registry_value.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "util/numbers.h"

namespace hostscope {
namespace {

using Bytes = std::span<const char>;

// Larger data is none that a registry holds, and its text would not fit into a 32-bit process.
inline constexpr std::size_t kMostBytes = 0x20000000;

OwnedText TextOfSize(std::size_t length) {
  return CopyOfText(nullptr, 0, length);
}

std::size_t LengthUpToZero(Bytes bytes) {
  return static_cast<std::size_t>(std::find(bytes.begin(), bytes.end(), '\0') - bytes.begin());
}

char* WriteQuoted(char* target, Bytes text) {
  *target++ = '"';
  if (!text.empty()) std::memcpy(target, text.data(), text.size());
  target += text.size();
  *target++ = '"';
  return target;
}

OwnedText FormatText(Bytes data) {
  Bytes text = data.first(data.size() - 1);
  text = text.first(LengthUpToZero(text));
  OwnedText result = TextOfSize(text.size() + 2);
  if (result.present()) WriteQuoted(result.data(), text);
  return result;
}

// A text of one character and its zero become four characters; nothing grows more than that, but
// for a last text without its zero.
OwnedText FormatTexts(Bytes data) {
  OwnedText result = TextOfSize(data.size() * 2 + 2);
  if (!result.present()) return result;
  char* end = result.data();
  while (!data.empty() && data.front() != '\0') {
    const std::size_t length = LengthUpToZero(data);
    if (end != result.data()) *end++ = ',';
    end = WriteQuoted(end, data.first(length));
    data = data.subspan(std::min(length + 1, data.size()));
  }
  return result;
}

OwnedText FormatBytes(Bytes data) {
  constexpr char kDigits[] = "0123456789abcdef";
  OwnedText result = TextOfSize(data.size() * 3);
  if (!result.present()) return result;
  char* end = result.data();
  for (const char byte : data) {
    const auto number = static_cast<unsigned char>(byte);
    *end++ = kDigits[number >> 4];
    *end++ = kDigits[number & 0xF];
    *end++ = ' ';
  }
  return result;
}

std::uint32_t Number(Bytes bytes, bool big_endian = false) {
  std::uint32_t number = 0;
  for (unsigned i = 0; i < sizeof number; ++i) {
    const unsigned shift = 8 * (big_endian ? sizeof number - 1 - i : i);
    number |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << shift;
  }
  return number;
}

OwnedText FormatDoubleWord(std::uint32_t number) {
  char text[32];
  wsprintfA(text, "0x%08x (%u)", number, number);
  return DuplicateText(text);
}

OwnedText FormatQuadWord(Bytes data) {
  const std::uint32_t low = Number(data);
  const std::uint32_t high = Number(data.subspan(4));
  char decimal[kUnsigned64Size];
  FormatUnsigned64(std::uint64_t{high} << 32 | low, decimal);
  char text[48];
  wsprintfA(text, "0x%08x%08x (%s)", high, low, decimal);
  return DuplicateText(text);
}

}  // namespace

OwnedText FormatRegistryValue(DWORD type, std::span<const char> data) {
  if (data.empty()) return DuplicateText("(value not set)");
  if (data.size() > kMostBytes) return {};
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      return FormatText(data);
    case REG_MULTI_SZ:
      return FormatTexts(data);
    case REG_DWORD:
    case REG_DWORD_BIG_ENDIAN:
      if (data.size() < 4) break;
      return FormatDoubleWord(Number(data, type == REG_DWORD_BIG_ENDIAN));
    case REG_QWORD:
      if (data.size() < 8) break;
      return FormatQuadWord(data);
    default:
      break;
  }
  return FormatBytes(data);
}

}  // namespace hostscope
