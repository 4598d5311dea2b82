#include "util/profile_text.h"

#include <algorithm>

#include "platform/win32.h"
#include "util/handles.h"

namespace hostscope {
namespace {

// Longest section name that a header is looked for; the program's own are far shorter.
inline constexpr std::size_t kLongestHeader = 64;

// The place of the header [name], or null.
const char* FindHeader(const char* text, const char* name) {
  char header[kLongestHeader + 3] = "[";
  const std::size_t length = TextLength(name);
  if (length > kLongestHeader) return nullptr;
  CopyText(header + 1, sizeof header - 1, name);
  header[length + 1] = ']';
  return FindText(text, header);
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

ProfileText::Body ProfileText::FindBody(const char* text, const char* name) {
  Body body{.header = FindHeader(text, name)};
  if (body.header == nullptr) return body;
  body.start = body.header + TextLength(name) + 2;
  // The line break of the header line: two characters, whatever they are.
  body.start += TextLength(body.start) >= 2 ? 2 : 0;
  const char* const next_section = FindCharacter(body.start, '[');
  body.boundary = next_section != nullptr ? next_section : body.start + TextLength(body.start);
  body.end = WithoutLineBreak(body.start, body.boundary);
  return body;
}

OwnedText ProfileText::SectionBody(const char* name) const {
  if (!present()) return {};
  const Body body = FindBody(text_.c_str(), name);
  if (body.header == nullptr) return {};
  return CopyOfText(body.start, static_cast<std::size_t>(body.end - body.start));
}

}  // namespace hostscope
