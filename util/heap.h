// Owned memory from the process heap.
#pragma once

#include <cstddef>

namespace hostscope {

// A move-only block of the process heap, zero-filled when it is made. A block that could not be had
// is absent: `data()` is null and `size()` 0.
class HeapBuffer {
 public:
  HeapBuffer() = default;
  explicit HeapBuffer(std::size_t size);
  ~HeapBuffer() { Release(); }
  HeapBuffer(HeapBuffer&& other) noexcept : data_(other.data_), size_(other.size_) {
    other.data_ = nullptr;
    other.size_ = 0;
  }
  HeapBuffer& operator=(HeapBuffer&& other) noexcept;
  HeapBuffer(const HeapBuffer&) = delete;
  HeapBuffer& operator=(const HeapBuffer&) = delete;

  bool present() const { return data_ != nullptr; }
  char* data() { return data_; }
  const char* data() const { return data_; }
  // In bytes, as asked for.
  std::size_t size() const { return size_; }
  void Release();
  // Makes the block larger or smaller; what it held stays, what is new is zero. False, with the
  // block as it was, when there is no memory.
  bool Resize(std::size_t size);

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace hostscope
