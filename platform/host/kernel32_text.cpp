// The text functions of KERNEL32, and the order in which the platform sorts texts.
//
// It is a word sort: texts are compared as wholes first by letters, then by accents, then by case,
// and only at the very end by hyphens, apostrophes and control characters, which count for nothing
// before. Symbols come before digits and digits before letters.
#include <algorithm>
#include <array>
#include <compare>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

using namespace host;

namespace {

using Byte = unsigned char;

// Characters of one row differ by accent only, in this order; the rows are in the order of letters.
// Of letters only the small ones are named.
constexpr std::string_view kRows[] = {" ",
                                      "\xA0",
                                      "\t",
                                      "\n",
                                      "\v",
                                      "\f",
                                      "\r",
                                      "!",
                                      "\"",
                                      "#",
                                      "$",
                                      "%",
                                      "&",
                                      "(",
                                      ")",
                                      "*",
                                      ",",
                                      ".",
                                      "/",
                                      ":",
                                      ";",
                                      "?",
                                      "@",
                                      "[",
                                      "\\",
                                      "]",
                                      "^",
                                      "_",
                                      "`",
                                      "{",
                                      "|",
                                      "}",
                                      "~",
                                      "\xA1",
                                      "\xA6",
                                      "\xA8",
                                      "\xAF",
                                      "\xB4",
                                      "\xB8",
                                      "\xBF",
                                      "\x98",
                                      "\x91",
                                      "\x92",
                                      "\x82",
                                      "\x93",
                                      "\x94",
                                      "\x84",
                                      "\x8B",
                                      "\x9B",
                                      "\xA2",
                                      "\xA3",
                                      "\xA4",
                                      "\xA5",
                                      "\x80",
                                      "+",
                                      "<",
                                      "=",
                                      ">",
                                      "\xB1",
                                      "\xAB",
                                      "\xBB",
                                      "\xD7",
                                      "\xF7",
                                      "\xA7",
                                      "\xA9",
                                      "\xAC",
                                      "\xAE",
                                      "\xB0",
                                      "\xB5",
                                      "\xB6",
                                      "\xB7",
                                      "\x85",
                                      "\x86",
                                      "\x87",
                                      "\x95",
                                      "\x89",
                                      "\x81\x8D\x8F\x90\x9D",  // the code page leaves these free
                                      "0",
                                      "\xBC",
                                      "\xBD",
                                      "\xBE",
                                      "1\xB9",
                                      "2\xB2",
                                      "3\xB3",
                                      "4",
                                      "5",
                                      "6",
                                      "7",
                                      "8",
                                      "9",
                                      "a\xAA\xE1\xE0\xE2\xE4\xE3\xE5",
                                      "b",
                                      "c\xE7",
                                      "d\xF0",
                                      "e\xE9\xE8\xEA\xEB",
                                      "f\x83",
                                      "g",
                                      "h",
                                      "i\xED\xEC\xEE\xEF",
                                      "j",
                                      "k",
                                      "l",
                                      "m",
                                      "n\xF1",
                                      "o\xBA\xF3\xF2\xF4\xF6\xF5\xF8",
                                      "p",
                                      "q",
                                      "r",
                                      "s\x9A",
                                      "t",
                                      "\x99",
                                      "u\xFA\xF9\xFB\xFC",
                                      "v",
                                      "w",
                                      "x",
                                      "y\xFD\xFF",
                                      "z\x9E"};

// In their own order.
constexpr std::string_view kNearlyIgnored =
    "\x01\x02\x03\x04\x05\x06\x07\x08\x0E\x0F\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C"
    "\x1D\x1E\x1F\x7F'-\x96\x97";

struct Expansion {
  char character;
  char letters[3];
};
constexpr Expansion kExpansions[] = {
    {'\xE6', "ae"}, {'\x9C', "oe"}, {'\xDF', "ss"}, {'\xFE', "th"}};

struct Weight {
  Byte row = 0;  // 0: none, the character counts for nothing
  Byte accent = 0;
  Byte nearly_ignored = 0;  // its place in their order, from 1; 0: not one of them
};

std::array<Weight, 256> MakeWeights() {
  std::array<Weight, 256> weights{};
  for (std::size_t row = 0; row < std::size(kRows); ++row) {
    for (std::size_t accent = 0; accent < kRows[row].size(); ++accent) {
      const char character = kRows[row][accent];
      const Weight weight{static_cast<Byte>(row + 1), static_cast<Byte>(accent), 0};
      weights[static_cast<Byte>(character)] = weight;
      weights[static_cast<Byte>(UpperCase(character))] = weight;
    }
  }
  for (std::size_t i = 0; i < kNearlyIgnored.size(); ++i) {
    weights[static_cast<Byte>(kNearlyIgnored[i])].nearly_ignored = static_cast<Byte>(i + 1);
  }
  weights[static_cast<Byte>('\x88')] = weights['^'];
  return weights;
}

const Weight& WeightOf(char character) {
  static const std::array<Weight, 256> weights = MakeWeights();
  return weights[static_cast<Byte>(character)];
}

// A text taken apart into what is compared, in the order of comparing.
struct SortKey {
  struct NearlyIgnored {
    std::ptrdiff_t from_end;  // the later in the text, the smaller
    Byte weight;
    auto operator<=>(const NearlyIgnored&) const = default;
  };
  std::vector<Byte> rows;
  std::vector<Byte> accents;
  std::vector<Byte> capitals;
  std::vector<NearlyIgnored> nearly_ignored;

  explicit SortKey(std::string_view text) {
    for (const char character : text)
      Add(character);
  }

 private:
  void Add(char character) {
    const auto expansion =
        std::find_if(std::begin(kExpansions), std::end(kExpansions),
                     [&](const Expansion& e) { return e.character == LowerCase(character); });
    const bool capital = LowerCase(character) != character;
    if (expansion != std::end(kExpansions)) {
      AddLetter(WeightOf(expansion->letters[0]), capital);
      AddLetter(WeightOf(expansion->letters[1]), capital);
      return;
    }
    const Weight& weight = WeightOf(character);
    if (weight.nearly_ignored != 0) {
      nearly_ignored.push_back({-std::ssize(rows), weight.nearly_ignored});
    } else if (weight.row != 0) {
      AddLetter(weight, capital);
    }
  }

  void AddLetter(const Weight& weight, bool capital) {
    rows.push_back(weight.row);
    accents.push_back(weight.accent);
    capitals.push_back(capital ? 1 : 0);
  }
};

int Compare(LPCSTR left, LPCSTR right, bool case_counts) {
  if (left == nullptr || right == nullptr) return (left != nullptr) - (right != nullptr);
  const SortKey a((std::string_view(left)));
  const SortKey b((std::string_view(right)));
  auto order = a.rows <=> b.rows;
  if (order == 0) order = a.accents <=> b.accents;
  if (order == 0 && case_counts) order = a.capitals <=> b.capitals;
  if (order == 0) order = a.nearly_ignored <=> b.nearly_ignored;
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

}  // namespace

int WINAPI lstrcmpA(LPCSTR left, LPCSTR right) {
  if (CallFails("lstrcmpA")) return 0;
  return Compare(left, right, true);
}

int WINAPI lstrcmpiA(LPCSTR left, LPCSTR right) {
  if (CallFails("lstrcmpiA")) return 0;
  return Compare(left, right, false);
}

int WINAPI WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR text, int length, LPSTR target,
                               int size, LPCSTR default_character, BOOL* default_used) {
  if (CallFails("WideCharToMultiByte")) {
    // As when there is no room: what was converted so far stays.
    if (target != nullptr && size > 0) *target = '?';
    return 0;
  }
  constexpr DWORD kKnownFlags = WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR | WC_COMPOSITECHECK;
  DWORD error = ERROR_SUCCESS;
  if (code_page != CP_ACP || text == nullptr || length == 0 || size < 0 ||
      (target == nullptr && size > 0) || default_character != nullptr || default_used != nullptr) {
    error = ERROR_INVALID_PARAMETER;
  } else if ((flags & ~kKnownFlags) != 0) {
    error = ERROR_INVALID_FLAGS;
  }
  if (error != ERROR_SUCCESS) {
    SetLastError(error);
    return 0;
  }
  const int units =
      length < 0 ? static_cast<int>(std::char_traits<WCHAR>::length(text)) + 1 : length;
  if (size == 0) return units;
  const int converted = std::min(units, size);
  std::transform(text, text + converted, target,
                 [](WCHAR unit) { return CodePageFromUnicode(unit).value_or('?'); });
  if (converted == units) return units;
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return 0;
}
