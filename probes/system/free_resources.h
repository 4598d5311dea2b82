// The free resources of Windows 95/98/Me, as their resource meter shows them.
#pragma once

#include <cstdint>

#include "report/item.h"

namespace hostscope {

// As the resource meter's library numbers them.
enum class ResourceKind : std::uint32_t { kSystem = 0, kGdi = 1, kUser = 2 };

// In percent. False, the percentage 0, on NT and without the library or its function.
bool ReadFreeResources(std::uint32_t& percent, const ProbeContext& context, ResourceKind kind);

// One line for each kind that is switched on, without a figure where there is none. Always true.
bool WriteFreeResources(ItemRun& run);

}  // namespace hostscope
