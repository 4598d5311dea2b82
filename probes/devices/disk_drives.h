// The physical hard disks.
#pragma once

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

// Two of the ways to find drives. Each appends to an empty array of DiskDriveRecord
// (probes/devices/ata_identify.h) and answers whether it has appended a record.

// What each IDE drive tells of itself: by way of the disk driver on NT, and through the ports of
// the controllers elsewhere.
bool IdentifyIdeDrives(const ProbeContext& context, RecordArray& drives);

// The names in the registry's SCSI map, which only NT has.
bool FindScsiDisks(const ProbeContext& context, RecordArray& drives);

// The item. What neither way finds it takes from the device registry.
bool WriteDiskDrives(ItemRun& run);

}  // namespace hostscope
