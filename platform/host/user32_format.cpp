// The platform's formatter and the letter-case functions.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/host/code_page.h"
#include "platform/host/faults.h"
#include "platform/host/user32_text.h"

using namespace host;

namespace {

constexpr std::size_t kLimit = 1024;  // bytes, the final zero included

// %[-][#][0][width][.precision][h|l]type. The order of the flags is fixed.
struct Specifier {
  bool left = false;
  bool prefix = false;
  bool zeros = false;
  std::size_t width = 0;
  std::size_t precision = 0;  // 0: none stated
  bool is_long = false;
};

// Widths beyond the limit make no difference.
std::size_t ParseNumber(const char*& at) {
  std::size_t number = 0;
  for (; *at >= '0' && *at <= '9'; ++at)
    number = std::min(number * 10 + static_cast<std::size_t>(*at - '0'), kLimit);
  return number;
}

// Moves on to the type character.
Specifier ParseSpecifier(const char*& at) {
  const auto take = [&at](char flag) {
    if (*at != flag) return false;
    ++at;
    return true;
  };
  Specifier specifier;
  specifier.left = take('-');
  specifier.prefix = take('#');
  specifier.zeros = take('0');
  specifier.width = ParseNumber(at);
  if (take('.')) specifier.precision = ParseNumber(at);
  specifier.is_long = take('l');
  if (!specifier.is_long) take('h');
  return specifier;
}

class Output {
 public:
  explicit Output(LPSTR buffer) : buffer_(buffer) {}
  void Add(std::string_view text) {
    const std::size_t room = kLimit - 1 - length_;
    text = text.substr(0, room);
    std::memcpy(buffer_ + length_, text.data(), text.size());
    length_ += text.size();
  }
  void Add(char character) { Add(std::string_view(&character, 1)); }
  void AddPadded(std::string_view text, const Specifier& specifier, std::size_t counted_length) {
    const std::string blanks(specifier.width - std::min(specifier.width, counted_length), ' ');
    if (!specifier.left) Add(blanks);
    Add(text);
    if (specifier.left) Add(blanks);
  }
  int Finish() {
    buffer_[length_] = '\0';
    return static_cast<int>(length_);
  }

 private:
  LPSTR buffer_;
  std::size_t length_ = 0;
};

// The digits carry the sign; precision and zero padding count it as a digit, the prefix they don't.
void AddNumber(Output& output, const Specifier& specifier, std::string digits,
               std::string_view prefix) {
  const bool pad_with_zeros = specifier.zeros && !specifier.left;
  const std::size_t wanted = std::max(specifier.precision, pad_with_zeros ? specifier.width : 0);
  if (digits.size() < wanted) {
    digits.insert(digits.starts_with('-') ? 1 : 0, wanted - digits.size(), '0');
  }
  output.AddPadded(std::string(prefix) + digits, specifier, digits.size());
}

template <typename Integer>
std::string Digits(Integer number, int base) {
  char text[16];
  const auto result = std::to_chars(text, text + sizeof(text), number, base);
  return std::string(text, result.ptr);
}

void AddHexadecimal(Output& output, const Specifier& specifier, unsigned number, bool capitals) {
  std::string digits = Digits(number, 16);
  if (capitals) digits = UpperCase(digits);
  const std::string_view prefix = !specifier.prefix ? "" : capitals ? "0X" : "0x";
  AddNumber(output, specifier, digits, prefix);
}

void AddText(Output& output, const Specifier& specifier, const char* text) {
  if (text == nullptr) text = "(null)";
  const std::size_t limit = specifier.precision == 0 ? kLimit : specifier.precision;
  const std::string_view shown(text, strnlen(text, limit));
  output.AddPadded(shown, specifier, shown.size());
}

// One value, of the type at `type`; false when that is no type.
bool AddValue(Output& output, const Specifier& specifier, char type, std::va_list& arguments) {
  switch (type) {
    case 'c': {
      const char character = static_cast<char>(va_arg(arguments, int));
      output.AddPadded(std::string_view(&character, 1), specifier, 1);
      return true;
    }
    case 's':
      if (specifier.is_long) return false;  // 16-bit texts
      AddText(output, specifier, va_arg(arguments, const char*));
      return true;
    case 'd':
    case 'i':
      AddNumber(output, specifier, Digits(va_arg(arguments, int), 10), "");
      return true;
    case 'u':
      AddNumber(output, specifier, Digits(va_arg(arguments, unsigned), 10), "");
      return true;
    case 'x':
    case 'X':
      AddHexadecimal(output, specifier, va_arg(arguments, unsigned), type == 'X');
      return true;
    default:
      return false;
  }
}

int Format(LPSTR buffer, LPCSTR format, std::va_list& arguments) {
  Output output(buffer);
  const char* at = format;
  while (*at != '\0') {
    if (*at != '%') {
      output.Add(*at++);
      continue;
    }
    ++at;
    if (*at == '%') {
      output.Add(*at++);
      continue;
    }
    const Specifier specifier = ParseSpecifier(at);
    if (AddValue(output, specifier, *at, arguments)) {
      ++at;
    } else {
      // What is not understood leaves its width in blanks, and goes on as text from its type on.
      output.AddPadded("", specifier.left ? Specifier() : specifier, 0);
    }
  }
  return output.Finish();
}

LPSTR MapText(LPSTR text, char (*map)(char)) {
  const auto number = reinterpret_cast<ULONG_PTR>(text);
  if (number <= 0xFFFF) {
    const char mapped = map(static_cast<char>(number));
    return reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<unsigned char>(mapped)));
  }
  for (char* at = text; *at != '\0'; ++at)
    *at = map(*at);
  return text;
}

}  // namespace

int WINAPI wvsprintfA(LPSTR buffer, LPCSTR format, std::va_list arguments) {
  if (CallFails("wvsprintfA")) return 0;
  std::va_list copy;
  va_copy(copy, arguments);
  const int length = Format(buffer, format, copy);
  va_end(copy);
  return length;
}

int WINAPI wsprintfA(LPSTR buffer, LPCSTR format, ...) {
  if (CallFails("wsprintfA")) return 0;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = Format(buffer, format, arguments);
  va_end(arguments);
  return length;
}

LPSTR WINAPI CharUpperA(LPSTR text) {
  if (CallFails("CharUpperA")) return nullptr;
  return MapText(text, UpperCase);
}

LPSTR WINAPI CharLowerA(LPSTR text) {
  if (CallFails("CharLowerA")) return nullptr;
  return MapText(text, LowerCase);
}
