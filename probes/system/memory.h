// The physical memory and how much of it is in use.
#pragma once

#include <cstdint>
#include <span>

#include "report/probe_context.h"

namespace hostscope {

struct MemoryStatus {
  std::uint32_t load = 0;   // in percent
  std::uint64_t total = 0;  // physical memory, in bytes
  std::uint64_t available = 0;
};

// By the wider of the system's two calls where there is it, since the older one counts in 32 bits.
MemoryStatus ReadMemoryStatus();

// "total %u Mb, available %u Mb", whole megabytes.
void FormatPhysicalMemoryOf(const MemoryStatus& status, std::span<char> text);

// The load as "%u%%", and the physical memory as above. Both are always true.
bool FormatMemoryUsage(ProbeContext& context, std::span<char> text);
bool FormatPhysicalMemory(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
