// The machine's processor and memory, and what Windows says about their use.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/cpu.h"
#include "platform/host/windows_types.h"

namespace host {

struct Machine;

struct Processor {
  DWORD count = 1;
  hostscope::ProcessorAge age = hostscope::ProcessorAge::kIdentifiable;
  // What the identification instruction answers; zeros for a leaf that is not stated.
  std::map<DWORD, hostscope::ProcessorLeaf> leaves;
  // Steps of the time-stamp counter in a second.
  std::uint64_t counter_frequency = 0;
  // The processor and the clock of the computer that the layer runs on stand in for all this but
  // the count.
  bool real = false;
};

// Whether the layer was built for a processor that can be a machine's real one.
bool HasRealProcessor();

struct Memory {
  std::uint64_t total = 0;  // in bytes
  std::uint64_t available = 0;
  std::optional<DWORD> load;  // in percent; absent: follows from the other two
};

// Of Windows 95/98/Me, as their vwin32 device tells it. The device is there where this is stated;
// an empty path: the device knows of no swap file.
struct SwapFile {
  std::string path;
  std::uint64_t pages = 0;  // of 4 KB
};

// The resource meter's library is there from now on, and answers the percentage for the kind:
// 0 system, 1 GDI, 2 user.
void StateFreeResources(Machine& machine, unsigned kind, DWORD percent);

struct Hardware {
  Processor processor;
  Memory memory;
  std::optional<SwapFile> swap_file;
  std::array<DWORD, 3> free_resources = {};  // by StateFreeResources
  // The multimedia timer of a described machine: it moves on by one at each reading, so that
  // measuring takes no time and repeats exactly.
  std::atomic<std::uint64_t> timer = 0;
};

}  // namespace host
