#include "probes/system/memory.h"

#include "util/library.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, 1> kWideFunctions = {"GlobalMemoryStatusEx"};
using WideFunction = BOOL(WINAPI*)(MEMORYSTATUSEX*);

bool ReadWideStatus(MemoryStatus& status) {
  BoundLibrary<kWideFunctions.size()> kernel;
  if (!kernel.Bind("KERNEL32.DLL", kWideFunctions)) return false;
  MEMORYSTATUSEX record = {};
  record.dwLength = sizeof record;
  if (!kernel.Get<WideFunction>(0)(&record)) return false;
  status = {record.dwMemoryLoad, record.ullTotalPhys, record.ullAvailPhys};
  return true;
}

}  // namespace

MemoryStatus ReadMemoryStatus() {
  MemoryStatus status;
  if (ReadWideStatus(status)) return status;
  MEMORYSTATUS record = {};
  static_assert(sizeof record == 32);
  record.dwLength = sizeof record;
  GlobalMemoryStatus(&record);
  return {record.dwMemoryLoad, record.dwTotalPhys, record.dwAvailPhys};
}

void FormatPhysicalMemoryOf(const MemoryStatus& status, std::span<char> text) {
  wsprintfA(text.data(), "total %u Mb, available %u Mb", static_cast<unsigned>(status.total >> 20),
            static_cast<unsigned>(status.available >> 20));
}

bool FormatMemoryUsage(ProbeContext&, std::span<char> text) {
  wsprintfA(text.data(), "%u%%", static_cast<unsigned>(ReadMemoryStatus().load));
  return true;
}

bool FormatPhysicalMemory(ProbeContext&, std::span<char> text) {
  FormatPhysicalMemoryOf(ReadMemoryStatus(), text);
  return true;
}

}  // namespace hostscope
