// DOS services, as 32-bit programs reach them on Windows 95/98/Me.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/dos_registers.h"

namespace hostscope {

// A zeroed block whose address fits in a DOS register. Its own pages, so that a service that writes
// somewhat more than it should harms nothing.
class DosBlock {
 public:
  explicit DosBlock(std::size_t size);
  ~DosBlock();
  DosBlock(const DosBlock&) = delete;
  DosBlock& operator=(const DosBlock&) = delete;

  // False when there was no memory.
  bool present() const { return data_ != nullptr; }
  char* data() { return data_; }
  std::uint32_t address() const;

 private:
  char* data_;
};

// Calls interrupt 21h with the registers, which are those after the call then; the carry flag among
// them says that DOS refused. False when the vwin32 device does not open or refuses.
bool CallDos(DosRegisters& registers);

}  // namespace hostscope
