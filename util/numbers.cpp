#include "util/numbers.h"

namespace hostscope {
namespace {

inline constexpr std::uint32_t kNoDigit = 99;

std::uint32_t DigitValue(char character) {
  if (character >= '0' && character <= '9') return static_cast<std::uint32_t>(character - '0');
  if (character >= 'a' && character <= 'f') return static_cast<std::uint32_t>(character - 'a') + 10;
  if (character >= 'A' && character <= 'F') return static_cast<std::uint32_t>(character - 'A') + 10;
  return kNoDigit;
}

std::uint32_t ParseDigits(const char* text, std::uint32_t base) {
  std::uint32_t number = 0;
  for (; DigitValue(*text) < base; ++text)
    number = number * base + DigitValue(*text);
  return number;
}

}  // namespace

std::uint32_t ParseProfileNumber(const char* text) {
  if (text == nullptr) return 0;
  if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) return ParseDigits(text + 2, 16);
  if (text[0] == '0' && DigitValue(text[1]) < 8) return ParseDigits(text + 1, 8);
  if (text[0] == '-') return 0U - ParseDigits(text + 1, 10);
  return ParseDigits(text, 10);
}

void FormatUnsigned64(std::uint64_t number, char (&text)[kUnsigned64Size]) {
  std::size_t length = 1;
  for (std::uint64_t rest = number / 10; rest != 0; rest /= 10)
    ++length;
  text[length] = '\0';
  for (; length > 0; number /= 10)
    text[--length] = static_cast<char>('0' + number % 10);
}

}  // namespace hostscope
