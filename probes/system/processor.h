// The processor: how many there are, name, speed and instruction sets.
#pragma once

#include <cstdint>
#include <span>

#include "platform/cpu.h"
#include "platform/win32.h"
#include "report/probe_context.h"

namespace hostscope {

// What the name is decided from: answers of the identification instruction. A processor without
// one has its age alone.
struct ProcessorNameFacts {
  ProcessorAge age = ProcessorAge::kIdentifiable;
  ProcessorLeaf vendor = {};  // leaf 0
  bool has_brand = false;
  ProcessorLeaf brand[3] = {};  // leaves 0x80000002 to 0x80000004
};

// "vendor brand"; without a brand the vendor and one blank. At most 61 characters.
void FormatProcessorName(const ProcessorNameFacts& facts, std::span<char> text);

// Feature words: EDX of leaf 1 and of leaf 0x80000001; 0 when the processor has no such leaf.
std::uint32_t ReadStandardFeatures();
std::uint32_t ReadExtendedFeatures();

// Of the standard word.
constexpr bool HasCoprocessor(std::uint32_t features) {
  return (features >> 0 & 1) != 0;
}
constexpr bool HasTimeStampCounter(std::uint32_t features) {
  return (features >> 4 & 1) != 0;
}
constexpr bool HasMMX(std::uint32_t features) {
  return (features >> 23 & 1) != 0;
}
constexpr bool HasSSE(std::uint32_t features) {
  return (features >> 25 & 1) != 0;
}
constexpr bool HasSSE2(std::uint32_t features) {
  return (features >> 26 & 1) != 0;
}
// Of the extended word.
constexpr bool HasExtended3DNow(std::uint32_t features) {
  return (features >> 30 & 1) != 0;
}
constexpr bool Has3DNow(std::uint32_t features) {
  return (features >> 31 & 1) != 0;
}

// The clock rate in MHz, truncated, of a counter that was read before and after half a second.
constexpr std::uint32_t Megahertz(std::uint32_t counter_before, std::uint32_t counter_after) {
  return (counter_after - counter_before) / 500000;
}

// A clock that counts milliseconds.
using MillisecondTimer = DWORD(WINAPI*)();

// Counts the steps of the time-stamp counter for half a second of the timer, without pause. False,
// 0 MHz, when the timer shows one and the same time so often in a row that it must be standing. The
// processor must have the counter.
bool CountMegahertz(MillisecondTimer timer, std::uint32_t& megahertz);

unsigned CountProcessors();

// As NT states it for the processor of that index, else as measured. False, 0 MHz, when it is not
// stated and cannot be measured.
bool MeasureProcessorSpeed(const ProbeContext& context, unsigned index, std::uint32_t& megahertz);

// The values of the items. All are always true: what cannot be told is said in words.
bool FormatProcessorCount(ProbeContext& context, std::span<char> text);
bool ReadProcessorName(ProbeContext& context, std::span<char> text);
bool FormatProcessorSpeed(ProbeContext& context, std::span<char> text);
bool FormatCoprocessor(ProbeContext& context, std::span<char> text);
bool FormatMMX(ProbeContext& context, std::span<char> text);
bool Format3DNow(ProbeContext& context, std::span<char> text);
bool FormatExtended3DNow(ProbeContext& context, std::span<char> text);
bool FormatSSE(ProbeContext& context, std::span<char> text);
bool FormatSSE2(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
