// The machine's code page, Windows-1252: letter case, and the way to and from Unicode.
//
// The platform gives the five bytes that the code page leaves free (81 8D 8F 90 9D) the control
// characters of the same number, and so does this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// Case mapping as CharUpperA and CharLowerA do it: a letter whose other case is not in the code
// page (DF, B5) stays.
char UpperCase(char character);
char LowerCase(char character);
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);

bool EqualNoCase(std::string_view left, std::string_view right);
// For tables keyed by names whose case does not count.
struct NoCaseHash {
  std::size_t operator()(std::string_view text) const;
};
struct NoCaseEqual {
  bool operator()(std::string_view left, std::string_view right) const {
    return EqualNoCase(left, right);
  }
};
// The order in which NT keeps names: by the Unicode numbers of the upper-case characters.
struct NoCaseLess {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const;
};

char16_t UnicodeFromCodePage(char character);
// Absent for a character that the code page does not have.
std::optional<char> CodePageFromUnicode(char32_t character);

// A text of the platform's 16-bit functions handed over to an 8-bit one: a unit that the code page
// does not have becomes "?". The bytes are little-endian units; an odd last byte is dropped.
std::string CodePageFromUtf16(std::string_view bytes);

// How many bytes at the beginning of the text are UTF-8.
std::size_t Utf8Length(std::string_view text);
bool IsUtf8(std::string_view text);
// Absent when the text is not UTF-8 or holds a character that the code page does not have.
std::optional<std::string> CodePageFromUtf8(std::string_view text);
// The same with "?" for every 16-bit unit that the code page does not have; the text must be UTF-8,
// in which half of a surrogate pair may stand alone (as Utf8FromUtf16 leaves it).
std::string CodePageFromUtf8WithMarks(std::string_view text);
std::string Utf8FromCodePage(std::string_view text);
// Little-endian units; half of a surrogate pair that stands alone is kept as three bytes. An odd
// last byte is dropped.
std::string Utf8FromUtf16(std::string_view bytes);

}  // namespace host
