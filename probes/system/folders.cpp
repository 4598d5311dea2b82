#include "probes/system/folders.h"

#include "platform/win32.h"
#include "util/heap.h"
#include "util/text.h"

namespace hostscope {
namespace {

using FolderQuery = UINT (*)(char* buffer, UINT size);

// Asks for the size, then for the path. A path that grew in between does not fit and fails.
bool ReadFolder(FolderQuery query, std::span<char> text) {
  text.front() = '\0';
  const UINT size = query(nullptr, 0);
  if (size == 0) return false;
  HeapBuffer path(static_cast<std::size_t>(size) + 1);
  if (!path.present()) return false;
  const UINT length = query(path.data(), size);
  if (length == 0 || length > size) return false;
  CopyText(text.data(), text.size(), path.data());
  return true;
}

UINT QueryWindowsFolder(char* buffer, UINT size) {
  return GetWindowsDirectoryA(buffer, size);
}
UINT QuerySystemFolder(char* buffer, UINT size) {
  return GetSystemDirectoryA(buffer, size);
}
UINT QueryTempFolder(char* buffer, UINT size) {
  return GetTempPathA(size, buffer);
}

}  // namespace

bool ReadWindowsFolder(ProbeContext&, std::span<char> text) {
  return ReadFolder(QueryWindowsFolder, text);
}

bool ReadSystemFolder(ProbeContext&, std::span<char> text) {
  return ReadFolder(QuerySystemFolder, text);
}

bool ReadTempFolder(ProbeContext&, std::span<char> text) {
  if (!ReadFolder(QueryTempFolder, text)) return false;
  const std::size_t length = TextLength(text.data());
  if (length > 0 && text[length - 1] == '\\') text[length - 1] = '\0';
  return true;
}

}  // namespace hostscope
