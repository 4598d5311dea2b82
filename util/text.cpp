#include "util/text.h"

#include <algorithm>
#include <cstring>

namespace hostscope {
namespace {

// How many characters of the text a search with the bound n may look at.
std::size_t SearchLength(const char* text, int n) {
  if (text == nullptr) return 0;
  if (n < 0) return TextLength(text);
  const void* const end = std::memchr(text, 0, static_cast<std::size_t>(n));
  if (end == nullptr) return static_cast<std::size_t>(n);
  return static_cast<std::size_t>(static_cast<const char*>(end) - text);
}

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                              : character;
}

}  // namespace

std::size_t TextLength(const char* text) {
  return text == nullptr ? 0 : std::strlen(text);
}

OwnedText CopyOfText(const char* text, std::size_t length, std::size_t extra) {
  HeapBuffer block(length + 1 + extra);
  if (!block.present()) return {};
  if (length > 0) std::memcpy(block.data(), text, length);
  return OwnedText(static_cast<HeapBuffer&&>(block));
}

OwnedText DuplicateText(const char* text, std::size_t extra) {
  return CopyOfText(text, TextLength(text), extra);
}

void CopyText(char* field, std::size_t size, const char* text) {
  if (size == 0) return;
  const std::size_t length = SearchLength(text, static_cast<int>(size - 1));
  if (length > 0) std::memmove(field, text, length);
  field[length] = '\0';
}

bool SameText(const char* first, const char* second) {
  const std::size_t length = TextLength(first);
  return length == TextLength(second) && (length == 0 || std::memcmp(first, second, length) == 0);
}

bool SameTextIgnoringCase(const char* first, const char* second) {
  const std::size_t length = TextLength(first);
  if (length != TextLength(second)) return false;
  for (std::size_t i = 0; i < length; ++i) {
    if (LowerCase(first[i]) != LowerCase(second[i])) return false;
  }
  return true;
}

const char* FindText(const char* text, const char* needle, int n) {
  const std::size_t length = SearchLength(text, n);
  const std::size_t needle_length = TextLength(needle);
  if (length == 0 || needle_length > length) return nullptr;
  const char* const end = text + length;
  const char* const found = std::search(text, end, needle, needle + needle_length);
  return found == end ? nullptr : found;
}

const char* FindLastText(const char* text, const char* needle, int n) {
  const std::size_t length = SearchLength(text, n);
  const std::size_t needle_length = TextLength(needle);
  if (length == 0 || needle_length > length) return nullptr;
  for (const char* start = text + (length - needle_length);; --start) {
    if (std::memcmp(start, needle, needle_length) == 0) return start;
    if (start == text) return nullptr;
  }
}

const char* FindCharacter(const char* text, char character, int n) {
  const std::size_t length = SearchLength(text, n);
  if (length == 0) return nullptr;
  return static_cast<const char*>(std::memchr(text, character, length));
}

const char* FindLastCharacter(const char* text, char character, int n) {
  for (std::size_t i = SearchLength(text, n); i > 0; --i) {
    if (text[i - 1] == character) return text + i - 1;
  }
  return nullptr;
}

}  // namespace hostscope
