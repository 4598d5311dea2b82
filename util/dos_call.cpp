#include "util/dos_call.h"

#include "util/handles.h"

namespace hostscope {

bool CallDos(DosRegisters& registers) {
  const FileHandle device =
      FileHandle::OpenDevice("\\\\.\\vwin32", GENERIC_READ, FILE_FLAG_DELETE_ON_CLOSE);
  if (!device.open()) return false;
  DWORD returned = 0;
  return DeviceIoControl(device.get(), kDosServices, &registers, sizeof registers, &registers,
                         sizeof registers, &returned, nullptr) != 0;
}

}  // namespace hostscope
