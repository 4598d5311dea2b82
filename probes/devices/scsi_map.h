// The registry's map of SCSI devices, which only NT keeps.
#pragma once

#include "report/probe_context.h"
#include "util/record_array.h"
#include "util/registry.h"

namespace hostscope {

// Units have numbers from 0 on, in the order of their ports, buses, targets and units.
inline constexpr unsigned kScsiUnits = 256;

// The identifier of the unit with that number; absent when the map has no such unit, or one of
// another type (case does not count), or one without an identifier.
RegistryValue ReadScsiIdentifier(unsigned number, const char* type);

// Appends a record for each unit of the type that has an identifier, in their order; the identifier
// is in the field given, a text of the record or of its base, and the rest is zero. Whether there
// was one; off NT there is none.
template <typename Record, typename Field>
bool FindScsiUnits(const ProbeContext& context, const char* type, Field field,
                   RecordArray& records) {
  bool found = false;
  for (unsigned number = 0; context.is_nt() && number < kScsiUnits; ++number) {
    const RegistryValue identifier = ReadScsiIdentifier(number, type);
    if (!identifier.present()) continue;
    Record record = {};
    identifier.CopyTextTo(record.*field);
    found |= records.Append(&record) >= 0;
  }
  return found;
}

}  // namespace hostscope
