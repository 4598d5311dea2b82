// 8-bit, zero-terminated texts in the system code page: owned copies, bounded copying and searches.
#pragma once

#include <cstddef>
#include <span>

#include "util/heap.h"

namespace hostscope {

// A text of its own on the process heap, or none. Move-only.
class OwnedText {
 public:
  OwnedText() = default;
  // Takes a block that holds a zero-terminated text.
  explicit OwnedText(HeapBuffer&& block) : block_(static_cast<HeapBuffer&&>(block)) {}

  bool present() const { return block_.present(); }
  // The text; the empty text when there is none.
  const char* c_str() const { return block_.present() ? block_.data() : ""; }
  // The text's own characters, with all the room that it was made with; null when there is none.
  char* data() { return block_.data(); }
  // Characters and the terminator that fit.
  std::size_t capacity() const { return block_.size(); }
  void Release() { block_.Release(); }

 private:
  HeapBuffer block_;
};

std::size_t TextLength(const char* text);

// The first `length` characters of a text as a new text, with room for `extra` further characters;
// none when there is no memory.
OwnedText CopyOfText(const char* text, std::size_t length, std::size_t extra = 0);

// A new copy of the text with room for `extra` further characters; none when there is no memory.
OwnedText DuplicateText(const char* text, std::size_t extra = 0);

// Copies the text into a field of `size` characters, terminator included, cut to fit; characters of
// the field beyond the terminator keep what they held. A null text counts as empty.
void CopyText(char* field, std::size_t size, const char* text);

template <std::size_t kSize>
void CopyText(char (&field)[kSize], const char* text) {
  CopyText(field, kSize, text);
}

// What the platform's formatter (wsprintfA) writes at most, terminator included.
inline constexpr std::size_t kFormattedSize = 1024;

// Some systems leave an overlong formatted text without its terminator; the area holds at least
// kFormattedSize characters.
inline void EndFormatted(std::span<char> area) {
  area[kFormattedSize - 1] = '\0';
}

// An answer as the report gives it.
constexpr const char* YesOrNo(bool answer) {
  return answer ? "Yes" : "No";
}

// Exact comparison, byte by byte.
bool SameText(const char* first, const char* second);

// Comparison without regard to the case of the letters A to Z.
bool SameTextIgnoringCase(const char* first, const char* second);

// Searches. All are bounded: n = kWholeText means the whole text, and none looks past the
// terminating zero. A null text holds nothing. The result is a position within the text, or null.
inline constexpr int kWholeText = -1;

// First occurrence of the needle that starts within the first n - length(needle) + 1 positions.
// Exact, case-sensitive. An empty needle is found at the start of a text that is not empty.
const char* FindText(const char* text, const char* needle, int n = kWholeText);

// Last occurrence that starts at or before position n - length(needle).
const char* FindLastText(const char* text, const char* needle, int n = kWholeText);

// First position of the character within the first n characters.
const char* FindCharacter(const char* text, char character, int n = kWholeText);
inline char* FindCharacter(char* text, char character) {
  return const_cast<char*>(FindCharacter(static_cast<const char*>(text), character));
}

// Last position of the character within the first n characters.
const char* FindLastCharacter(const char* text, char character, int n = kWholeText);

}  // namespace hostscope
