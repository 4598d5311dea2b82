// Devices, which CreateFileA opens by names that begin with "\\.\".
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "platform/host/handles.h"

namespace host {

struct Machine;

// An open device ("device" among the open objects), closed by CloseHandle.
class Device : public Object {
 public:
  Device() : Object("device") {}
  // What DeviceIoControl does: 0, `returned` being the bytes of `out` that count, or the error. The
  // two areas may be the same.
  virtual DWORD Control(DWORD code, std::span<const BYTE> in, std::span<BYTE> out,
                        DWORD& returned) = 0;
};

inline constexpr std::string_view kDevicePrefix = "\\\\.\\";

// Opens the device of that name (without the prefix) in the machine: null when the name is another
// device's, or the machine has no such device.
using OpenDeviceFunction = std::shared_ptr<Device> (*)(Machine& machine, std::string_view name);

std::shared_ptr<Device> OpenVwin32(Machine& machine, std::string_view name);
std::shared_ptr<Device> OpenPhysicalDrive(Machine& machine, std::string_view name);
std::shared_ptr<Device> OpenDriveLetter(Machine& machine, std::string_view name);

}  // namespace host
