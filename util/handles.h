// Owners of the platform's handles: each closes what it holds, on every path.
#pragma once

#include "platform/win32.h"

namespace hostscope {

// A file. Closed state is "not open"; the invalid handle value never gets out.
class FileHandle {
 public:
  FileHandle() = default;
  explicit FileHandle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  ~FileHandle() { Close(); }
  FileHandle(FileHandle&& other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
  FileHandle& operator=(FileHandle&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = other.handle_;
      other.handle_ = nullptr;
    }
    return *this;
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;

  bool open() const { return handle_ != nullptr; }
  HANDLE get() const { return handle_; }
  void Close() {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
  }

  // An existing file for reading, others may read it too.
  static FileHandle OpenForReading(const char* path);
  // A new or truncated file for writing in one go from front to back, others may read it.
  static FileHandle CreateForWriting(const char* path);

 private:
  HANDLE handle_ = nullptr;
};

// A kernel object that is closed by CloseHandle and whose absence is null (tokens, threads).
class KernelHandle {
 public:
  KernelHandle() = default;
  ~KernelHandle() { Close(); }
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

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace hostscope
