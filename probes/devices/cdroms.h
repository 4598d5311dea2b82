// The CD-ROM drives.
#pragma once

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

// Appends a CdromRecord, with no more than its name, for each CD-ROM drive in the registry's map of
// SCSI devices, which only NT keeps. True when there was one.
bool FindScsiCdroms(const ProbeContext& context, RecordArray& cdroms);

// The drives that the device scanner finds; where it finds none, those of the map of SCSI devices.
// False when the scanner could not examine them and the map holds none.
bool WriteCdroms(ItemRun& run);

}  // namespace hostscope
