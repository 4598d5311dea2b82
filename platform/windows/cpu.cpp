// The processor itself. None of these may be inlined: the gate over the finished program lets
// exactly the last two hold instructions that are younger than the 80386.
#include "platform/cpu.h"

namespace hostscope {
namespace {

constexpr std::uint32_t kAlignmentCheckFlag = 1U << 18;
constexpr std::uint32_t kIdentificationFlag = 1U << 21;

// Whether the flag of the flags register keeps a change; the register is as before afterwards.
__attribute__((noinline)) bool CanChangeFlag(std::uint32_t flag) {
  std::uint32_t before;
  std::uint32_t after;
  asm volatile(
      "pushfl\n\t"
      "popl %0\n\t"
      "movl %0, %1\n\t"
      "xorl %2, %1\n\t"
      "pushl %1\n\t"
      "popfl\n\t"
      "pushfl\n\t"
      "popl %1\n\t"
      "pushl %0\n\t"
      "popfl"
      : "=&r"(before), "=&r"(after)
      : "r"(flag)
      : "cc", "memory");
  return ((before ^ after) & flag) != 0;
}

}  // namespace

__attribute__((noinline)) ProcessorAge ReadProcessorAge() {
  if (!CanChangeFlag(kAlignmentCheckFlag)) return ProcessorAge::k80386;
  return CanChangeFlag(kIdentificationFlag) ? ProcessorAge::kIdentifiable : ProcessorAge::k80486;
}

__attribute__((noinline)) ProcessorLeaf ReadProcessorLeaf(std::uint32_t leaf) {
  ProcessorLeaf result;
  asm volatile("cpuid"
               : "=a"(result.eax), "=b"(result.ebx), "=c"(result.ecx), "=d"(result.edx)
               : "0"(leaf), "2"(0));
  return result;
}

__attribute__((noinline)) std::uint32_t ReadTimeStampCounter() {
  std::uint32_t low;
  std::uint32_t high;
  asm volatile("rdtsc" : "=a"(low), "=d"(high));
  return low;
}

}  // namespace hostscope
