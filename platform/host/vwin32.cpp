// The vwin32 device of Windows 95/98/Me: DOS services for 32-bit programs, as far as the program
// asks for them.
#include <cstring>

#include "platform/dos_registers.h"
#include "platform/host/code_page.h"
#include "platform/host/devices.h"
#include "platform/host/machine.h"

namespace host {
namespace {

using hostscope::DosRegisters;

constexpr DWORD kGenericIoctl = 0x440D;
constexpr DWORD kFindSwapFile = 0x486E;
constexpr DWORD kInvalidFunction = 1;  // DOS's own code

// Writes the path, with its zero, where EDX points; the pages come back in ECX:EBX.
bool FindSwapFile(const SwapFile& swap_file, DosRegisters& registers) {
  if (swap_file.path.empty()) return false;
  // The block lies where 32 bits reach, so the address is whole.
  char* const name = reinterpret_cast<char*>(static_cast<std::uintptr_t>(registers.edx));
  std::memcpy(name, swap_file.path.c_str(), swap_file.path.size() + 1);
  registers.ecx = static_cast<DWORD>(swap_file.pages >> 32);
  registers.ebx = static_cast<DWORD>(swap_file.pages);
  return true;
}

class Vwin32 : public Device {
 public:
  explicit Vwin32(const SwapFile& swap_file) : swap_file_(swap_file) {}

  DWORD Control(DWORD code, std::span<const BYTE> in, std::span<BYTE> out,
                DWORD& returned) override {
    if (code != hostscope::kDosServices) return ERROR_NOT_SUPPORTED;
    DosRegisters registers;
    if (in.size() < sizeof registers || out.size() < sizeof registers)
      return ERROR_INVALID_PARAMETER;
    std::memcpy(&registers, in.data(), sizeof registers);
    const bool served = registers.eax == kGenericIoctl && registers.ecx == kFindSwapFile &&
                        FindSwapFile(swap_file_, registers);
    registers.flags &= ~hostscope::kDosCarry;
    if (!served) {
      registers.flags |= hostscope::kDosCarry;
      registers.eax = kInvalidFunction;
    }
    std::memcpy(out.data(), &registers, sizeof registers);
    returned = sizeof registers;
    return ERROR_SUCCESS;
  }

 private:
  SwapFile swap_file_;
};

}  // namespace

std::shared_ptr<Device> OpenVwin32(Machine& machine, std::string_view name) {
  const std::optional<SwapFile>& swap_file = machine.hardware.swap_file;
  if (machine.IsNt() || !swap_file || !EqualNoCase(name, "vwin32")) return nullptr;
  return std::make_shared<Vwin32>(*swap_file);
}

}  // namespace host
