#include "util/paths.h"

#include "platform/win32.h"

namespace hostscope {

OwnedText ModulePath() {
  HeapBuffer block(kModulePathSize);
  if (!block.present()) return {};
  const DWORD length = GetModuleFileNameA(nullptr, block.data(), kModulePathSize);
  if (length == 0) return {};
  // Old systems leave a path that just fits without its terminator.
  block.data()[kModulePathSize - 1] = '\0';
  return OwnedText(static_cast<HeapBuffer&&>(block));
}

OwnedText ProgramFolder() {
  OwnedText path = ModulePath();
  if (!path.present()) return path;
  const char* const backslash = FindLastCharacter(path.c_str(), '\\');
  if (backslash != nullptr) path.data()[backslash - path.c_str()] = '\0';
  return path;
}

void StripSeparator(char* folder) {
  const std::size_t length = TextLength(folder);
  if (length == 0) return;
  char& last = folder[length - 1];
  if (last == '\\' || last == '/') last = '\0';
}

bool EnterFolder(const char* folder) {
  const bool drive_alone = folder[0] != '\0' && folder[1] == ':' && folder[2] == '\0';
  const char root[] = {folder[0], ':', '\\', '\0'};
  return SetCurrentDirectoryA(drive_alone ? root : folder) != 0;
}

OwnedText JoinPath(const char* folder, const char* name) {
  if (FindCharacter(name, ':') != nullptr) return DuplicateText(name);
  const std::size_t name_length = TextLength(name);
  OwnedText path = DuplicateText(folder, name_length + 1);
  if (!path.present()) return path;
  StripSeparator(path.data());
  const char* const rest = name_length > 0 && name[0] == '\\' ? name + 1 : name;
  if (TextLength(rest) == 0) return path;
  const std::size_t folder_length = TextLength(path.c_str());
  path.data()[folder_length] = '\\';
  CopyText(path.data() + folder_length + 1, path.capacity() - folder_length - 1, rest);
  return path;
}

OwnedText FullPath(const char* path) {
  const DWORD size = GetFullPathNameA(path, 0, nullptr, nullptr);
  HeapBuffer block(size);
  const DWORD length =
      size == 0 || !block.present() ? 0 : GetFullPathNameA(path, size, block.data(), nullptr);
  if (length == 0 || length >= size) return DuplicateText(path);
  return OwnedText(static_cast<HeapBuffer&&>(block));
}

}  // namespace hostscope
