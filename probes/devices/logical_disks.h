// The drive letters, with their file systems and sizes.
#pragma once

#include <cstdint>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct LogicalDiskRecord {
  char letter;
  char disk_type[256];
  char file_system_name[256];
  std::uint32_t file_system_flags;
  // In bytes.
  std::uint64_t total;
  std::uint64_t total_free;
  std::uint64_t available_free;
};

// Appends a record for each drive to an empty array of LogicalDiskRecord, in the system's order.
// What a drive does not tell is empty or 0. False when the list of drives can't be had.
bool ListLogicalDisks(const ProbeContext& context, RecordArray& disks);

// The text of what GetDriveTypeA answers.
const char* DriveTypeText(std::uint32_t type);

// The item: a line for each of its keys that has one; the key `Label` has none.
bool WriteLogicalDisks(ItemRun& run);

}  // namespace hostscope
