#include "platform/host/code_page.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

constexpr unsigned char Byte(char character) {
  return static_cast<unsigned char>(character);
}

// The bytes 80 to 9F, where the code page and Latin-1 part.
constexpr std::array<char16_t, 32> kUnicodeOf80To9F = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct CaseTables {
  std::array<unsigned char, 256> upper;
  std::array<unsigned char, 256> lower;
};

constexpr CaseTables MakeCaseTables() {
  CaseTables tables{};
  for (unsigned i = 0; i < 256; ++i) {
    tables.upper[i] = tables.lower[i] = static_cast<unsigned char>(i);
  }
  const auto pair = [&tables](unsigned upper, unsigned lower) {
    tables.upper[lower] = static_cast<unsigned char>(upper);
    tables.lower[upper] = static_cast<unsigned char>(lower);
  };
  for (unsigned i = 'A'; i <= 'Z'; ++i)
    pair(i, i + 0x20);
  for (unsigned i = 0xC0; i <= 0xDE; ++i) {
    if (i != 0xD7) pair(i, i + 0x20);
  }
  pair(0x8A, 0x9A);
  pair(0x8C, 0x9C);
  pair(0x8E, 0x9E);
  pair(0x9F, 0xFF);
  return tables;
}

constexpr CaseTables kCase = MakeCaseTables();

// The next character of the text; absent, with the text untouched, where it is not UTF-8.
std::optional<char32_t> TakeUtf8(std::string_view& text, bool allow_surrogates) {
  const unsigned char first = Byte(text.front());
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || length > text.size()) return std::nullopt;
  char32_t character = length == 1 ? first : first & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((Byte(text[i]) & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (Byte(text[i]) & 0x3F);
  }
  const bool too_long = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (too_long || character > 0x10FFFF || (surrogate && !allow_surrogates)) return std::nullopt;
  text.remove_prefix(length);
  return character;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto tail = [&text, character](unsigned shift) {
    text.push_back(static_cast<char>(0x80 | ((character >> shift) & 0x3F)));
  };
  if (character < 0x80) {
    text.push_back(static_cast<char>(character));
  } else if (character < 0x800) {
    text.push_back(static_cast<char>(0xC0 | character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    text.push_back(static_cast<char>(0xE0 | character >> 12));
    tail(6);
    tail(0);
  } else {
    text.push_back(static_cast<char>(0xF0 | character >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::size_t AsciiPrefix(std::string_view text) {
  return static_cast<std::size_t>(
      std::find_if(text.begin(), text.end(), [](char c) { return Byte(c) >= 0x80; }) -
      text.begin());
}

char16_t UnitAt(std::string_view bytes, std::size_t index) {
  return static_cast<char16_t>(Byte(bytes[2 * index]) | Byte(bytes[2 * index + 1]) << 8);
}

}  // namespace

char UpperCase(char character) {
  return static_cast<char>(kCase.upper[Byte(character)]);
}
char LowerCase(char character) {
  return static_cast<char>(kCase.lower[Byte(character)]);
}

std::string UpperCase(std::string_view text) {
  std::string result(text);
  for (char& character : result)
    character = UpperCase(character);
  return result;
}

std::string LowerCase(std::string_view text) {
  std::string result(text);
  for (char& character : result)
    character = LowerCase(character);
  return result;
}

bool EqualNoCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return UpperCase(a) == UpperCase(b); });
}

std::size_t NoCaseHash::operator()(std::string_view text) const {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  for (const char character : text) {
    hash = (hash ^ kCase.upper[Byte(character)]) * 0x100000001B3;
  }
  return static_cast<std::size_t>(hash);
}

bool NoCaseLess::operator()(std::string_view left, std::string_view right) const {
  return std::lexicographical_compare(
      left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return UnicodeFromCodePage(UpperCase(a)) < UnicodeFromCodePage(UpperCase(b));
      });
}

char16_t UnicodeFromCodePage(char character) {
  const unsigned char byte = Byte(character);
  return byte >= 0x80 && byte < 0xA0 ? kUnicodeOf80To9F[byte - 0x80] : byte;
}

std::optional<char> CodePageFromUnicode(char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<char>(character);
  }
  const auto found = std::find(kUnicodeOf80To9F.begin(), kUnicodeOf80To9F.end(), character);
  if (found == kUnicodeOf80To9F.end()) return std::nullopt;
  return static_cast<char>(0x80 + (found - kUnicodeOf80To9F.begin()));
}

std::string CodePageFromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size() / 2; ++i) {
    text.push_back(CodePageFromUnicode(UnitAt(bytes, i)).value_or('?'));
  }
  return text;
}

std::size_t Utf8Length(std::string_view text) {
  std::string_view rest = text;
  do {
    rest.remove_prefix(AsciiPrefix(rest));
  } while (!rest.empty() && TakeUtf8(rest, false));
  return text.size() - rest.size();
}

bool IsUtf8(std::string_view text) {
  return Utf8Length(text) == text.size();
}

std::optional<std::string> CodePageFromUtf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::optional<char32_t> character = TakeUtf8(text, false);
    const std::optional<char> byte = character ? CodePageFromUnicode(*character) : std::nullopt;
    if (!byte) return std::nullopt;
    result.push_back(*byte);
  }
  return result;
}

std::string CodePageFromUtf8WithMarks(std::string_view text) {
  std::string result(text.substr(0, AsciiPrefix(text)));
  text.remove_prefix(result.size());
  while (!text.empty()) {
    const std::optional<char32_t> character = TakeUtf8(text, true);
    if (!character) break;
    result.push_back(CodePageFromUnicode(*character).value_or('?'));
    if (*character >= 0x10000) result.push_back('?');
  }
  return result;
}

std::string Utf8FromCodePage(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char character : text)
    AppendUtf8(result, UnicodeFromCodePage(character));
  return result;
}

std::string Utf8FromUtf16(std::string_view bytes) {
  std::string text;
  const std::size_t count = bytes.size() / 2;
  text.reserve(count + count / 16);
  for (std::size_t i = 0; i < count; ++i) {
    char32_t character = UnitAt(bytes, i);
    if (character < 0x80) {
      text.push_back(static_cast<char>(character));
      continue;
    }
    if (character >= 0xD800 && character < 0xDC00 && i + 1 < count) {
      const char32_t second = UnitAt(bytes, i + 1);
      if (second >= 0xDC00 && second < 0xE000) {
        character = 0x10000 + ((character - 0xD800) << 10) + (second - 0xDC00);
        ++i;
      }
    }
    AppendUtf8(text, character);
  }
  return text;
}

}  // namespace host
