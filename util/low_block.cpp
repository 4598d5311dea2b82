#include "util/low_block.h"

#include "platform/win32.h"

namespace hostscope {

LowBlock::LowBlock(std::size_t size)
    : data_(static_cast<char*>(
          VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {}

LowBlock::~LowBlock() {
  if (data_ != nullptr) VirtualFree(data_, 0, MEM_RELEASE);
}

std::uint32_t LowBlock::address() const {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(data_));
}

}  // namespace hostscope
