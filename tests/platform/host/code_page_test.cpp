#include "platform/host/code_page.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace std::string_literals;

TEST(CodePage, EveryByteComesBackFromUnicode) {
  for (int i = 0; i < 256; ++i) {
    const char byte = static_cast<char>(i);
    EXPECT_EQ(CodePageFromUnicode(UnicodeFromCodePage(byte)), byte) << i;
    EXPECT_EQ(CodePageFromUtf8(Utf8FromCodePage({&byte, 1})), std::string(1, byte)) << i;
  }
}

TEST(CodePage, CaseMapping) {
  const struct {
    std::string lower, upper;
  } rows[] = {
      {"az09[`{", "AZ09[`{"},
      {"\xE0\xE4\xF6\xFE", "\xC0\xC4\xD6\xDE"},
      {"\x9A\x9C\x9E\xFF", "\x8A\x8C\x8E\x9F"},
      // No other case in the code page: sharp s, micro, division and multiplication sign, florin.
      {"\xDF\xB5\xF7\xD7\x83", "\xDF\xB5\xF7\xD7\x83"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(UpperCase(row.lower), row.upper);
    EXPECT_EQ(LowerCase(row.upper), row.lower);
    EXPECT_TRUE(EqualNoCase(row.lower, row.upper));
    EXPECT_EQ(NoCaseHash()(row.lower), NoCaseHash()(row.upper));
  }
  EXPECT_FALSE(EqualNoCase("ab", "abc"));
}

TEST(CodePage, OrderIsByUnicodeOfCapitals) {
  // Underscore stands after capitals; the ellipsis (2026) after every Latin-1 letter.
  const std::string sorted[] = {"", "a", "A1", "a2", "ab", "B", "_x", "\xE4", "\xFC", "\x85"};
  for (std::size_t i = 1; i < std::size(sorted); ++i) {
    EXPECT_TRUE(NoCaseLess()(sorted[i - 1], sorted[i])) << sorted[i];
    EXPECT_FALSE(NoCaseLess()(sorted[i], sorted[i - 1])) << sorted[i];
  }
}

TEST(CodePage, Utf8) {
  const struct {
    std::string utf8;
    std::optional<std::string> strict;
    bool valid;
  } rows[] = {
      {"plain", "plain", true},
      {"\xE2\x82\xAC\xC3\xBC", "\x80\xFC", true},
      {"\xD0\x96", std::nullopt, true},           // outside the code page
      {"\xF0\x9F\x98\x80", std::nullopt, true},   // outside the 16-bit range
      {"\xC0\xAF", std::nullopt, false},          // overlong
      {"\xE0\x80\xAF", std::nullopt, false},      // overlong
      {"\xED\xA0\x80", std::nullopt, false},      // half of a surrogate pair
      {"\xF4\x90\x80\x80", std::nullopt, false},  // beyond Unicode
      {"\xE2\x82", std::nullopt, false},          // cut
      {"\x80", std::nullopt, false},
      {"\xFF", std::nullopt, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(IsUtf8(row.utf8), row.valid) << row.utf8;
    EXPECT_EQ(CodePageFromUtf8(row.utf8), row.strict) << row.utf8;
  }
}

TEST(CodePage, Utf16) {
  const struct {
    std::string bytes, code_page, utf8;
  } rows[] = {
      {"a\0b\0"s, "ab", "ab"},
      {"\xAC\x20\xFC\x00"s, "\x80\xFC", "\xE2\x82\xAC\xC3\xBC"},
      {"\x16\x04x\0"s, "?x", "\xD0\x96x"},
      {"\x3D\xD8\x00\xDE"s, "??", "\xF0\x9F\x98\x80"},  // a pair is two units
      {"\x3D\xD8z\0"s, "?z", "\xED\xA0\xBDz"},          // half a pair
      {"\x3D\xD8"s, "?", "\xED\xA0\xBD"},
      {"a\0b"s, "a", "a"},  // an odd byte
  };
  for (const auto& row : rows) {
    EXPECT_EQ(CodePageFromUtf16(row.bytes), row.code_page) << row.utf8;
    EXPECT_EQ(Utf8FromUtf16(row.bytes), row.utf8);
    EXPECT_EQ(CodePageFromUtf8WithMarks(row.utf8), row.code_page) << row.utf8;
  }
}

}  // namespace
}  // namespace host
