#include "probes/devices/scsi_map.h"

#include "util/text.h"

namespace hostscope {

RegistryValue ReadScsiIdentifier(unsigned number, const char* type) {
  // Ports, buses, targets and units are each looked for by the numbers 0 to 3.
  constexpr unsigned kNumbers = 4;
  static_assert(kScsiUnits == kNumbers * kNumbers * kNumbers * kNumbers);
  char key[128];
  wsprintfA(key,
            "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port %u\\Scsi Bus %u\\Target Id %u"
            "\\Logical Unit Id %u",
            number / (kNumbers * kNumbers * kNumbers), number / (kNumbers * kNumbers) % kNumbers,
            number / kNumbers % kNumbers, number % kNumbers);
  const OwnedText its_type = ReadRegistryValue(HKEY_LOCAL_MACHINE, key, "Type").AsText();
  if (!SameTextIgnoringCase(its_type.c_str(), type)) return {};
  return ReadRegistryValue(HKEY_LOCAL_MACHINE, key, "Identifier");
}

}  // namespace hostscope
