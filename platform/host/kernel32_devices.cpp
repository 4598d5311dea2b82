// Device control.
#include "platform/host/devices.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID in, DWORD in_size, LPVOID out,
                            DWORD out_size, LPDWORD returned, LPOVERLAPPED) {
  if (EndableCallFails("DeviceIoControl")) return FALSE;
  const auto device =
      CurrentMachine().handles.FindAs<Device>(reinterpret_cast<std::uintptr_t>(handle));
  DWORD count = 0;
  const DWORD error = device == nullptr
                          ? ERROR_INVALID_HANDLE
                          : device->Control(code, {static_cast<const BYTE*>(in), in_size},
                                            {static_cast<BYTE*>(out), out_size}, count);
  if (returned != nullptr) *returned = error == 0 ? count : 0;
  if (error == 0) return TRUE;
  SetLastError(error);
  return FALSE;
}
