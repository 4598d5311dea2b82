#include "platform/host/setupapi.h"

#include <algorithm>
#include <mutex>

#include "platform/host/device_tree.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

namespace host {
namespace {

const LayerLibrary kLibrary({.name = "SETUPAPI.DLL",
                             .exports = {
                                 HOST_EXPORT(SetupDiClassGuidsFromNameA),
                                 HOST_EXPORT(SetupDiDestroyDeviceInfoList),
                                 HOST_EXPORT(SetupDiEnumDeviceInfo),
                                 HOST_EXPORT(SetupDiGetClassDevsA),
                                 HOST_EXPORT(SetupDiGetDeviceInstanceIdA),
                             }});

struct DeviceSet : Object {
  DeviceSet() : Object("device set") {}

  GUID device_class = {};
  std::vector<std::string> ids;
};

std::shared_ptr<DeviceSet> SetOf(HDEVINFO handle) {
  return CurrentMachine().handles.FindAs<DeviceSet>(reinterpret_cast<std::uintptr_t>(handle));
}

BOOL Failed(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// What every function does that works on a device of a set: 0, or the error to answer.
DWORD CheckArguments(const std::shared_ptr<DeviceSet>& set, PSP_DEVINFO_DATA device) {
  if (set == nullptr) return ERROR_INVALID_HANDLE;
  if (device == nullptr) return ERROR_INVALID_PARAMETER;
  return device->cbSize == sizeof *device ? ERROR_SUCCESS : ERROR_INVALID_USER_BUFFER;
}

}  // namespace
}  // namespace host

using host::Failed;

BOOL WINAPI SetupDiClassGuidsFromNameA(LPCSTR name, LPGUID guids, DWORD room, PDWORD number) {
  if (host::EndableCallFails("SetupDiClassGuidsFromNameA")) return FALSE;
  if (name == nullptr || number == nullptr || (guids == nullptr && room != 0)) {
    return Failed(ERROR_INVALID_PARAMETER);
  }
  const host::Machine& machine = host::CurrentMachine();
  const std::lock_guard lock(machine.registry.mutex());
  const std::vector<GUID> found = host::DeviceClassesNamed(machine, name);
  *number = static_cast<DWORD>(found.size());
  std::copy_n(found.begin(), std::min<std::size_t>(room, found.size()), guids);
  return room < found.size() ? Failed(ERROR_INSUFFICIENT_BUFFER) : TRUE;
}

HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* class_guid, LPCSTR enumerator, HWND, DWORD flags) {
  if (host::EndableCallFails("SetupDiGetClassDevsA")) return INVALID_HANDLE_VALUE;
  // The program asks for the present devices of one class, whatever their enumerator.
  if (class_guid == nullptr || enumerator != nullptr || flags != DIGCF_PRESENT) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  host::Machine& machine = host::CurrentMachine();
  const std::lock_guard lock(machine.registry.mutex());
  const auto set = std::make_shared<host::DeviceSet>();
  set->device_class = *class_guid;
  set->ids = host::PresentDevicesOfClass(machine, *class_guid);
  return reinterpret_cast<HDEVINFO>(machine.handles.Open(set));
}

BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO handle, DWORD index, PSP_DEVINFO_DATA device) {
  if (host::EndableCallFails("SetupDiEnumDeviceInfo")) return FALSE;
  const auto set = host::SetOf(handle);
  if (const DWORD error = host::CheckArguments(set, device)) return Failed(error);
  if (index >= set->ids.size()) return Failed(ERROR_NO_MORE_ITEMS);
  device->ClassGuid = set->device_class;
  device->DevInst = index + 1;
  device->Reserved = 0;
  return TRUE;
}

BOOL WINAPI SetupDiGetDeviceInstanceIdA(HDEVINFO handle, PSP_DEVINFO_DATA device, LPSTR id,
                                        DWORD size, PDWORD needed) {
  if (host::EndableCallFails("SetupDiGetDeviceInstanceIdA")) return FALSE;
  const auto set = host::SetOf(handle);
  if (const DWORD error = host::CheckArguments(set, device)) return Failed(error);
  const DWORD index = device->DevInst - 1;
  if (index >= set->ids.size() || (id == nullptr && size != 0)) {
    return Failed(ERROR_INVALID_PARAMETER);
  }
  const std::string& text = set->ids[index];
  if (needed != nullptr) *needed = static_cast<DWORD>(text.size() + 1);
  if (size < text.size() + 1) return Failed(ERROR_INSUFFICIENT_BUFFER);
  std::copy_n(text.c_str(), text.size() + 1, id);
  return TRUE;
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO handle) {
  if (host::CallFails("SetupDiDestroyDeviceInfoList")) return FALSE;
  if (host::SetOf(handle) == nullptr) return Failed(ERROR_INVALID_HANDLE);
  host::CurrentMachine().handles.Close(reinterpret_cast<std::uintptr_t>(handle));
  return TRUE;
}
