#include "util/dos_call.h"

#include "util/handles.h"

namespace hostscope {

DosBlock::DosBlock(std::size_t size)
    : data_(static_cast<char*>(
          VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))) {}

DosBlock::~DosBlock() {
  if (data_ != nullptr) VirtualFree(data_, 0, MEM_RELEASE);
}

std::uint32_t DosBlock::address() const {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(data_));
}

bool CallDos(DosRegisters& registers) {
  const FileHandle device =
      FileHandle::OpenDevice("\\\\.\\vwin32", GENERIC_READ, FILE_FLAG_DELETE_ON_CLOSE);
  if (!device.open()) return false;
  DWORD returned = 0;
  return DeviceIoControl(device.get(), kDosServices, &registers, sizeof registers, &registers,
                         sizeof registers, &returned, nullptr) != 0;
}

}  // namespace hostscope
