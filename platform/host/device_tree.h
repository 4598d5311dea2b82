// The devices of a machine, as its registry holds them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct Machine;

// The identifiers of the device classes that have this name.
std::vector<GUID> DeviceClassesNamed(const Machine& machine, std::string_view name);

// The instance ids of a class's present devices in the order of the registry.
std::vector<std::string> PresentDevicesOfClass(const Machine& machine, const GUID& device_class);

}  // namespace host
