// The processor of the machine: the stated one, or the real one where the machine asks for it.
#include "platform/cpu.h"

#include <cstdio>
#include <cstdlib>

#include "platform/host/machine.h"

#if defined(__x86_64__) || defined(__i386__)
#define HOST_IS_X86 1
#include <cpuid.h>
#include <x86intrin.h>
#else
#define HOST_IS_X86 0
#endif

namespace {

constexpr std::uint32_t kCounterFeature = 1U << 4;

// The real instruction would end the program.
void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "host layer: the machine's processor has no %s\n", what);
  std::abort();
}

hostscope::ProcessorLeaf RealLeaf([[maybe_unused]] std::uint32_t number) {
  hostscope::ProcessorLeaf leaf = {};
#if HOST_IS_X86
  __cpuid_count(number, 0, leaf.eax, leaf.ebx, leaf.ecx, leaf.edx);
#endif
  return leaf;
}

std::uint32_t RealCounter() {
#if HOST_IS_X86
  return static_cast<std::uint32_t>(__rdtsc());
#else
  return 0;
#endif
}

hostscope::ProcessorLeaf LeafOf(const host::Processor& processor, std::uint32_t number) {
  if (processor.real) return RealLeaf(number);
  const auto found = processor.leaves.find(number);
  return found == processor.leaves.end() ? hostscope::ProcessorLeaf{} : found->second;
}

}  // namespace

namespace host {

bool HasRealProcessor() {
  return HOST_IS_X86;
}

}  // namespace host

namespace hostscope {

ProcessorAge ReadProcessorAge() {
  if (host::CallFails("ReadProcessorAge")) return ProcessorAge::k80386;
  const host::Processor& processor = host::CurrentMachine().hardware.processor;
  return processor.real ? ProcessorAge::kIdentifiable : processor.age;
}

ProcessorLeaf ReadProcessorLeaf(std::uint32_t number) {
  if (host::CallFails("ReadProcessorLeaf")) return {};
  const host::Processor& processor = host::CurrentMachine().hardware.processor;
  Require(processor.age == ProcessorAge::kIdentifiable, "identification instruction");
  return LeafOf(processor, number);
}

std::uint32_t ReadTimeStampCounter() {
  if (host::CallFails("ReadTimeStampCounter")) return 0;
  const host::Hardware& hardware = host::CurrentMachine().hardware;
  const host::Processor& processor = hardware.processor;
  Require(processor.age == ProcessorAge::kIdentifiable &&
              (LeafOf(processor, 1).edx & kCounterFeature) != 0,
          "time-stamp counter");
  if (processor.real) return RealCounter();
  const std::uint64_t frequency = processor.counter_frequency;
  const std::uint64_t timer = hardware.timer;
  return static_cast<std::uint32_t>(frequency / 1000 * timer + frequency % 1000 * timer / 1000);
}

}  // namespace hostscope
