// Owners of the platform's handles: each closes what it holds, on every path.
#pragma once

#include "platform/win32.h"

namespace hostscope {

// A kernel object that is closed by CloseHandle and whose absence is null (tokens, threads).
class KernelHandle {
 public:
  KernelHandle() = default;
  ~KernelHandle() { Close(); }
  KernelHandle(KernelHandle&& other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
  KernelHandle& operator=(KernelHandle&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = other.handle_;
      other.handle_ = nullptr;
    }
    return *this;
  }
  KernelHandle(const KernelHandle&) = delete;
  KernelHandle& operator=(const KernelHandle&) = delete;

  bool open() const { return handle_ != nullptr; }
  HANDLE get() const { return handle_; }
  // Where a platform call puts the handle it opens; what was held is closed first.
  HANDLE* Receive() {
    Close();
    return &handle_;
  }
  void Close() {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
  }

 protected:
  explicit KernelHandle(HANDLE handle) : handle_(handle) {}

 private:
  HANDLE handle_ = nullptr;
};

// A file; the invalid handle value never gets out.
class FileHandle : public KernelHandle {
 public:
  FileHandle() = default;

  // An existing file for reading, others may read it too.
  static FileHandle OpenForReading(const char* path);
  // A new or truncated file for writing in one go from front to back, others may read it.
  static FileHandle CreateForWriting(const char* path);
  // A device that is there, with the access and flags given; others may read and write it too.
  static FileHandle OpenDevice(const char* name, DWORD access, DWORD flags = 0);

 private:
  explicit FileHandle(HANDLE handle)
      : KernelHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
};

// A directory listing: the entries that match a pattern, one at a time.
class FileSearch {
 public:
  explicit FileSearch(const char* pattern) : handle_(FindFirstFileA(pattern, &entry_)) {}
  ~FileSearch() {
    if (found()) FindClose(handle_);
  }
  FileSearch(const FileSearch&) = delete;
  FileSearch& operator=(const FileSearch&) = delete;

  // Whether there is a first entry.
  bool found() const { return handle_ != INVALID_HANDLE_VALUE; }
  // False at the end of the listing, and when it cannot go on.
  bool Next() {
    if (FindNextFileA(handle_, &entry_) != 0) return true;
    broke_off_ = GetLastError() != ERROR_NO_MORE_FILES;
    return false;
  }
  // Whether Next has answered false before the end.
  bool broke_off() const { return broke_off_; }
  const WIN32_FIND_DATAA& entry() const { return entry_; }

 private:
  WIN32_FIND_DATAA entry_ = {};
  HANDLE handle_;
  bool broke_off_ = false;
};

}  // namespace hostscope
