#include "probes/devices/device_info_set.h"

namespace hostscope {

static_assert(sizeof(SP_DEVINFO_DATA) == 28);

bool FindDeviceClass(const ProbeContext& context, const char* name, GUID& identifier) {
  const auto find =
      context.Setup<decltype(&SetupDiClassGuidsFromNameA)>(SetupFunction::kClassGuidsFromName);
  DWORD number = 0;
  if (find(name, &identifier, 1, &number) != 0) return number > 0;
  // With several classes of one name the library fills what there is room for and says no.
  return GetLastError() == ERROR_INSUFFICIENT_BUFFER && number > 1;
}

DeviceInfoSet::DeviceInfoSet(const ProbeContext& context, const GUID& class_identifier)
    : context_(context),
      set_(context.Setup<decltype(&SetupDiGetClassDevsA)>(SetupFunction::kGetClassDevs)(
          &class_identifier, nullptr, nullptr, DIGCF_PRESENT)) {}

DeviceInfoSet::~DeviceInfoSet() {
  if (!open()) return;
  context_.Setup<decltype(&SetupDiDestroyDeviceInfoList)>(SetupFunction::kDestroyDeviceInfoList)(
      set_);
}

bool DeviceInfoSet::Next() {
  device_ = {};
  device_.cbSize = sizeof device_;
  return context_.Setup<decltype(&SetupDiEnumDeviceInfo)>(SetupFunction::kEnumDeviceInfo)(
             set_, next_index_++, &device_) != 0;
}

OwnedText DeviceInfoSet::InstanceId() {
  const auto get =
      context_.Setup<decltype(&SetupDiGetDeviceInstanceIdA)>(SetupFunction::kGetDeviceInstanceId);
  DWORD size = 0;  // terminator included
  get(set_, &device_, nullptr, 0, &size);
  if (size == 0) return {};
  OwnedText id = CopyOfText("", 0, size);
  if (!id.present() || get(set_, &device_, id.data(), size, nullptr) == 0) return {};
  // An empty one would name the root of all devices.
  if (id.c_str()[0] == '\0') return {};
  return id;
}

}  // namespace hostscope
