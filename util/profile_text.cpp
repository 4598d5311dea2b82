#include "util/profile_text.h"

#include <algorithm>

#include "platform/win32.h"
#include "util/handles.h"

namespace hostscope {
namespace {

// Longest section name that a header is looked for; the program's own are far shorter.
inline constexpr std::size_t kLongestHeader = 64;

// The text after the header [name], or null.
const char* FindHeaderEnd(const char* text, const char* name) {
  char header[kLongestHeader + 3] = "[";
  const std::size_t length = TextLength(name);
  if (length > kLongestHeader) return nullptr;
  CopyText(header + 1, sizeof header - 1, name);
  header[length + 1] = ']';
  const char* const found = FindText(text, header);
  return found == nullptr ? nullptr : found + TextLength(header);
}

// The end of the text without the line break that stands before it.
const char* WithoutLineBreak(const char* start, const char* end) {
  if (end == start || end[-1] != '\n') return end;
  --end;
  return end > start && end[-1] == '\r' ? end - 1 : end;
}

}  // namespace

ProfileText ProfileText::Load(const char* path) {
  ProfileText result;
  const FileHandle file = FileHandle::OpenForReading(path);
  if (!file.open()) return result;
  const DWORD size = GetFileSize(file.get(), nullptr);
  if (size == INVALID_FILE_SIZE) return result;
  HeapBuffer block(static_cast<std::size_t>(size) + 1);
  DWORD read = 0;
  if (!block.present() || !ReadFile(file.get(), block.data(), size, &read, nullptr)) return result;
  result.text_ = OwnedText(static_cast<HeapBuffer&&>(block));
  return result;
}

OwnedText ProfileText::SectionBody(const char* name) const {
  if (!present()) return {};
  const char* start = FindHeaderEnd(text_.c_str(), name);
  if (start == nullptr) return {};
  // The line break of the header line: two characters, whatever they are.
  start += TextLength(start) >= 2 ? 2 : 0;
  const char* const next_section = FindCharacter(start, '[');
  const char* const end = next_section != nullptr ? next_section : start + TextLength(start);
  const char* const body_end = WithoutLineBreak(start, end);
  return CopyOfText(start, static_cast<std::size_t>(body_end - start));
}

}  // namespace hostscope
