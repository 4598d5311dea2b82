// Memory at an address that fits in 32 bits, for records that carry one.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hostscope {

// A zeroed block below 4 GB, in pages of its own: whoever writes behind it harms nothing up to the
// end of its last page, which a block of whole pages fills.
class LowBlock {
 public:
  explicit LowBlock(std::size_t size);
  ~LowBlock();
  LowBlock(const LowBlock&) = delete;
  LowBlock& operator=(const LowBlock&) = delete;

  // False when there was no memory.
  bool present() const { return data_ != nullptr; }
  char* data() { return data_; }
  const char* data() const { return data_; }
  std::uint32_t address() const;

 private:
  char* data_;
};

}  // namespace hostscope
