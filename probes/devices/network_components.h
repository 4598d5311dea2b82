// Installed parts of the network that are no devices: clients and services.
#pragma once

#include <cstdint>

#include "report/probe_context.h"
#include "util/string_list.h"

namespace hostscope {

// Whether the class is one of network components, and not of devices.
bool IsNetworkComponentClass(const char* class_name);

// Appends the description of each installed component of the class, in the registry's order. The
// number appended; -1 when the class, or on Windows 95/98/Me the key of all components, is not
// there.
std::int32_t ListNetworkComponents(const ProbeContext& context, const char* class_name,
                                   StringList& descriptions);

}  // namespace hostscope
