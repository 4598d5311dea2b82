// How many processors there are and how much memory.
#include <algorithm>
#include <limits>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

using namespace host;

namespace {

// The old record counts in 32 bits. NT shows a program that does not take addresses above 2 GB no
// more memory than that.
DWORD Clamp(std::uint64_t bytes, bool is_nt) {
  const std::uint64_t most = is_nt ? std::numeric_limits<LONG>::max() : 0xFFFFFFFF;
  return static_cast<DWORD>(std::min(bytes, most));
}

DWORD Load(const Memory& memory) {
  if (memory.load) return *memory.load;
  if (memory.total < 100 || memory.available > memory.total) return 0;
  const std::uint64_t percent = (memory.total - memory.available) / (memory.total / 100);
  return static_cast<DWORD>(std::min<std::uint64_t>(percent, 100));
}

}  // namespace

void WINAPI GetSystemInfo(LPSYSTEM_INFO info) {
  if (CallFails("GetSystemInfo")) return;
  *info = {};
  info->dwPageSize = 4096;
  info->dwNumberOfProcessors = CurrentMachine().hardware.processor.count;
}

// Only the physical memory is told.
void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS status) {
  if (CallFails("GlobalMemoryStatus")) return;
  const Machine& machine = CurrentMachine();
  const Memory& memory = machine.hardware.memory;
  *status = {};
  status->dwLength = sizeof(MEMORYSTATUS);
  status->dwMemoryLoad = Load(memory);
  status->dwTotalPhys = Clamp(memory.total, machine.IsNt());
  status->dwAvailPhys = Clamp(memory.available, machine.IsNt());
}

BOOL WINAPI GlobalMemoryStatusEx(LPMEMORYSTATUSEX status) {
  if (CallFails("GlobalMemoryStatusEx")) return FALSE;
  if (status->dwLength != sizeof(MEMORYSTATUSEX)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const Memory& memory = CurrentMachine().hardware.memory;
  *status = {};
  status->dwLength = sizeof(MEMORYSTATUSEX);
  status->dwMemoryLoad = Load(memory);
  status->ullTotalPhys = memory.total;
  status->ullAvailPhys = memory.available;
  return TRUE;
}
