#include "platform/host/security_id.h"

#include <charconv>
#include <cstdint>
#include <cstring>

namespace host {
namespace {

constexpr unsigned char kRevision = 1;
constexpr std::size_t kMostSubAuthorities = 15;
constexpr std::size_t kHeaderSize = 8;  // what stands before the sub-authorities

// Takes "-" and a decimal number off the front; absent when there is none or it is above the limit.
std::optional<std::uint64_t> TakeNumber(std::string_view& text, std::uint64_t limit) {
  std::uint64_t number = 0;
  if (!text.starts_with('-')) return std::nullopt;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data() + 1, end, number);
  if (error != std::errc() || number > limit) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
  return number;
}

}  // namespace

std::optional<std::string> SecurityIdBytes(std::string_view text) {
  if (!text.starts_with("S-1-")) return std::nullopt;
  text.remove_prefix(3);
  const std::optional<std::uint64_t> authority = TakeNumber(text, 0xFFFFFFFFFFFF);
  if (!authority) return std::nullopt;
  std::string record = {kRevision, 0};
  for (unsigned shift = 48; shift != 0; shift -= 8) {
    record += static_cast<char>(*authority >> (shift - 8));
  }
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    const std::optional<std::uint64_t> number = TakeNumber(text, 0xFFFFFFFF);
    if (!number || count == kMostSubAuthorities) return std::nullopt;
    for (unsigned shift = 0; shift < 32; shift += 8)
      record += static_cast<char>(*number >> shift);
  }
  if (count == 0) return std::nullopt;
  record[1] = static_cast<char>(count);
  return record;
}

std::string NextSecurityId(std::string record) {
  if (record.size() < kHeaderSize + 4) return record;
  for (std::size_t i = record.size() - 4; i < record.size() && ++record[i] == 0; ++i) {
  }
  return record;
}

std::optional<std::string> SecurityIdAt(const void* record) {
  const auto* const bytes = static_cast<const char*>(record);
  const auto count = static_cast<unsigned char>(bytes[1]);
  if (bytes[0] != kRevision || count > kMostSubAuthorities) return std::nullopt;
  return std::string(bytes, kHeaderSize + std::size_t{4} * count);
}

}  // namespace host
