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

// Makes room for records of so many bytes in all.
bool RecordArray::GrowFor(std::size_t size) {
  if (!present()) return false;
  if (size <= block_.size()) return true;
  // At least the growth step, and half as much again in a large array: a folder may hold a
  // hundred thousand names, and a copy of them all for every ten would take minutes.
  const std::size_t step = std::max(growth_, static_cast<std::size_t>(count_) / 2) * record_size_;
  return block_.size() <= static_cast<std::size_t>(INT32_MAX) - step &&
         block_.Resize(block_.size() + step);
}

int RecordArray::Append(const void* record) {
  const std::size_t offset = static_cast<std::size_t>(count_) * record_size_;
  if (!GrowFor(offset + record_size_)) {
    complete_ = false;
    return -1;
  }
  std::memcpy(block_.data() + offset, record, record_size_);
  return count_++;
}

void* RecordArray::Get(int index) {
  if (index < 0 || index >= count_) return nullptr;
  return block_.data() + static_cast<std::size_t>(index) * record_size_;
}

void RecordArray::Destroy() {
  block_.Release();
  Clear();
}

}  // namespace hostscope
