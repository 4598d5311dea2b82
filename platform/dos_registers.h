// The registers of a DOS call made through the vwin32 device of Windows 95/98/Me.
#pragma once

#include <cstdint>

namespace hostscope {

// The device takes and gives back this record. A register that names memory holds its address, so
// that memory must lie where 32 bits reach.
struct DosRegisters {
  std::uint32_t ebx;
  std::uint32_t edx;
  std::uint32_t ecx;
  std::uint32_t eax;
  std::uint32_t edi;
  std::uint32_t esi;
  std::uint32_t flags;
};
static_assert(sizeof(DosRegisters) == 28);

// The control code for services of interrupt 21h.
inline constexpr std::uint32_t kDosServices = 1;
// In EAX: the service of device drivers, which ECX tells in full.
inline constexpr std::uint32_t kDosGenericIoctl = 0x440D;
// In the flags after a call: it failed.
inline constexpr std::uint32_t kDosCarry = 1;

}  // namespace hostscope
