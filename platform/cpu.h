// What no call of the platform tells about the processor: its identification instruction and its
// time-stamp counter. The exe asks the processor; on Linux the described machine answers, or the
// real processor where the machine says so.
#pragma once

#include <cstdint>

namespace hostscope {

// How a processor can be asked about itself.
enum class ProcessorAge : std::uint8_t {
  k80386,  // no identification instruction; its flags register lacks the alignment check flag
  k80486,  // no identification instruction, the alignment check flag is there
  kIdentifiable,  // ReadProcessorLeaf may be called
};

// Told by which bits of the flags register can be changed. Safe on every processor.
ProcessorAge ReadProcessorAge();

struct ProcessorLeaf {
  std::uint32_t eax;
  std::uint32_t ebx;
  std::uint32_t ecx;
  std::uint32_t edx;
};

// The identification instruction (CPUID) with the leaf number in EAX. Only on a processor that is
// kIdentifiable.
ProcessorLeaf ReadProcessorLeaf(std::uint32_t leaf);

// The low 32 bits of the time-stamp counter (RDTSC). Only on a processor whose leaf 1 says in bit 4
// of EDX that it has one.
std::uint32_t ReadTimeStampCounter();

}  // namespace hostscope
