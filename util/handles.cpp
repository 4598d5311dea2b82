#include "util/handles.h"

namespace hostscope {

FileHandle FileHandle::OpenForReading(const char* path) {
  return FileHandle(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileHandle FileHandle::CreateForWriting(const char* path) {
  return FileHandle(CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

FileHandle FileHandle::OpenDevice(const char* name, DWORD access, DWORD flags) {
  return FileHandle(CreateFileA(name, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, flags, nullptr));
}

}  // namespace hostscope
