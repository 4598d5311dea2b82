// The processes that run while the report is made.
#pragma once

#include <cstdint>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct ProcessRecord {
  static constexpr std::uint32_t kUnset = 0xFFFFFFFF;

  std::uint32_t id = kUnset;
  char image_name[260] = {};
  std::uint32_t valid = kUnset;  // not 0: it opens for querying
  std::uint32_t priority_class = kUnset;
  // What the image was built for: major number << 16 | minor number.
  std::uint32_t version = kUnset;
  // Only NT tells these; sizes in bytes.
  std::uint32_t threads = 0;
  std::uint32_t handles = 0;
  std::uint32_t memory_usage = 0;  // the working set
  std::uint32_t pagefile_usage = 0;
  std::uint32_t page_faults = 0;
  std::uint32_t paged_pool = 0;
  std::uint32_t non_paged_pool = 0;
};
static_assert(sizeof(ProcessRecord) == 304);

// Binds the functions of the running system into the context; at once when they are bound already.
// False, with nothing bound and no library left loaded, when one is missing.
bool LoadProcessFunctions(ProbeContext& context);

// Appends a ProcessRecord for each process, in the system's order. False when the functions are
// missing or give no list, and without memory. The functions are released afterwards.
bool CollectProcesses(ProbeContext& context, RecordArray& processes);

// Fills `valid`, `version` and `priority_class` of the process with the record's id. The class of a
// process that does not open stays as it was.
void FillProcessDetails(ProcessRecord& process);

const char* PriorityClassName(std::uint32_t priority_class);

bool WriteProcesses(ItemRun& run);

}  // namespace hostscope
