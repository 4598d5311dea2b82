// The vwin32 device of Windows 95/98/Me: DOS services for 32-bit programs, as far as the program
// asks for them.
#include <cstring>

#include "platform/dos_registers.h"
#include "platform/host/code_page.h"
#include "platform/host/devices.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

using hostscope::DosRegisters;

constexpr DWORD kGetDeviceParameters = 0x4860;
constexpr DWORD kFindSwapFile = 0x486E;
constexpr DWORD kInvalidFunction = 1;  // DOS's own code

// The block lies where 32 bits reach, so the address is whole.
char* BlockAt(DWORD address) {
  return reinterpret_cast<char*>(static_cast<std::uintptr_t>(address));
}

// Writes the path, with its zero, where EDX points; the pages come back in ECX:EBX.
bool FindSwapFile(const Machine& machine, DosRegisters& registers) {
  const std::optional<SwapFile>& swap_file = machine.hardware.swap_file;
  if (!swap_file || swap_file->path.empty()) return false;
  std::memcpy(BlockAt(registers.edx), swap_file->path.c_str(), swap_file->path.size() + 1);
  registers.ecx = static_cast<DWORD>(swap_file->pages >> 32);
  registers.ebx = static_cast<DWORD>(swap_file->pages);
  return true;
}

// The drive's number, 1 for A:, is in BL. Of the parameters only the type is told, the second byte
// of the block at EDX.
bool GetDeviceParameters(const Machine& machine, DosRegisters& registers) {
  constexpr char kHardDisk = 5;
  const std::map<char, Drive> letters = DriveLetters(machine);
  const auto found = letters.find(static_cast<char>('A' - 1 + (registers.ebx & 0xFF)));
  if (found == letters.end()) return false;
  const Drive& drive = found->second;
  if (drive.type == DRIVE_REMOTE || drive.type == DRIVE_CDROM) return false;
  BlockAt(registers.edx)[1] =
      drive.floppy == nullptr ? kHardDisk : static_cast<char>(drive.floppy->dos_device_type);
  return true;
}

bool Serve(const Machine& machine, DosRegisters& registers) {
  if (registers.eax != hostscope::kDosGenericIoctl) return false;
  if (registers.ecx == kGetDeviceParameters) return GetDeviceParameters(machine, registers);
  return registers.ecx == kFindSwapFile && FindSwapFile(machine, registers);
}

class Vwin32 : public Device {
 public:
  explicit Vwin32(const Machine& machine) : machine_(machine) {}

  DWORD Control(DWORD code, std::span<const BYTE> in, std::span<BYTE> out,
                DWORD& returned) override {
    if (code != hostscope::kDosServices) return ERROR_NOT_SUPPORTED;
    DosRegisters registers;
    if (in.size() < sizeof registers || out.size() < sizeof registers)
      return ERROR_INVALID_PARAMETER;
    std::memcpy(&registers, in.data(), sizeof registers);
    const bool served = Serve(machine_, registers);
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
  const Machine& machine_;
};

}  // namespace

std::shared_ptr<Device> OpenVwin32(Machine& machine, std::string_view name) {
  const bool stated = machine.hardware.swap_file || !machine.disks.letters.empty();
  if (machine.IsNt() || !stated || !EqualNoCase(name, "vwin32")) return nullptr;
  return std::make_shared<Vwin32>(machine);
}

}  // namespace host
