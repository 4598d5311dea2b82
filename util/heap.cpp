#include "util/heap.h"

#include "platform/win32.h"

namespace hostscope {

HeapBuffer::HeapBuffer(std::size_t size)
    : data_(static_cast<char*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, size))) {
  if (data_ != nullptr) size_ = size;
}

HeapBuffer& HeapBuffer::operator=(HeapBuffer&& other) noexcept {
  if (this == &other) return *this;
  Release();
  data_ = other.data_;
  size_ = other.size_;
  other.data_ = nullptr;
  other.size_ = 0;
  return *this;
}

void HeapBuffer::Release() {
  if (data_ != nullptr) HeapFree(GetProcessHeap(), 0, data_);
  data_ = nullptr;
  size_ = 0;
}

bool HeapBuffer::Resize(std::size_t size) {
  if (data_ == nullptr) {
    *this = HeapBuffer(size);
    return present();
  }
  void* const larger = HeapReAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, data_, size);
  if (larger == nullptr) return false;
  data_ = static_cast<char*>(larger);
  size_ = size;
  return true;
}

}  // namespace hostscope
