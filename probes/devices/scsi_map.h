// The registry's map of SCSI devices, which only NT keeps.
#pragma once

#include "util/registry.h"

namespace hostscope {

// Units have numbers from 0 on, in the order of their ports, buses, targets and units.
inline constexpr unsigned kScsiUnits = 256;

// The identifier of the unit with that number; absent when the map has no such unit, or one of
// another type (case does not count), or one without an identifier.
RegistryValue ReadScsiIdentifier(unsigned number, const char* type);

// Calls visit(identifier) for each unit of the type that has an identifier, in their order.
template <typename Visit>
void FindScsiUnits(const char* type, Visit visit) {
  for (unsigned number = 0; number < kScsiUnits; ++number) {
    const RegistryValue identifier = ReadScsiIdentifier(number, type);
    if (identifier.present()) visit(identifier);
  }
}

}  // namespace hostscope
