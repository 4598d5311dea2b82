#include "util/record_array.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace hostscope {

bool RecordArray::Create(std::size_t record_size, std::size_t growth) {
  Destroy();
  if (record_size == 0 || growth == 0) return false;
  block_ = HeapBuffer(record_size * growth);
  record_size_ = record_size;
  growth_ = growth;
  return block_.present();
}

int RecordArray::Append(const void* record) {
  if (!present()) return -1;
  const auto index = static_cast<std::size_t>(count_);
  if ((index + 1) * record_size_ > block_.size()) {
    // At least the growth step, and half as much again in a large array: a folder may hold a
    // hundred thousand names, and a copy of them all for every ten would take minutes.
    const std::size_t step = std::max(growth_, index / 2) * record_size_;
    if (block_.size() > static_cast<std::size_t>(INT32_MAX) - step) return -1;
    if (!block_.Resize(block_.size() + step)) return -1;
  }
  std::memcpy(block_.data() + index * record_size_, record, record_size_);
  return count_++;
}

void* RecordArray::Get(int index) {
  if (index < 0 || index >= count_) return nullptr;
  return block_.data() + static_cast<std::size_t>(index) * record_size_;
}

void RecordArray::Destroy() {
  block_.Release();
  count_ = 0;
}

}  // namespace hostscope
