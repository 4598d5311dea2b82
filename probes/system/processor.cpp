#include "probes/system/processor.h"

#include <cstring>

#include "util/library.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kUnknown[] = "Unknown";

constexpr std::uint32_t kFirstExtendedLeaf = 0x80000000;
constexpr std::uint32_t kExtendedFeaturesLeaf = 0x80000001;
constexpr std::uint32_t kFirstBrandLeaf = 0x80000002;
constexpr std::uint32_t kLastBrandLeaf = 0x80000004;

bool IsIdentifiable() {
  return ReadProcessorAge() == ProcessorAge::kIdentifiable;
}

// Whether the processor tells more than its vendor.
bool HasStandardLeaves() {
  return IsIdentifiable() && ReadProcessorLeaf(0).eax != 0;
}

bool HasExtendedLeaf(std::uint32_t leaf) {
  return ReadProcessorLeaf(kFirstExtendedLeaf).eax >= leaf;
}

ProcessorNameFacts ReadNameFacts() {
  ProcessorNameFacts facts;
  facts.age = ReadProcessorAge();
  if (facts.age != ProcessorAge::kIdentifiable) return facts;
  facts.vendor = ReadProcessorLeaf(0);
  facts.has_brand = facts.vendor.eax != 0 && HasExtendedLeaf(kLastBrandLeaf);
  std::uint32_t leaf = kFirstBrandLeaf;
  for (ProcessorLeaf& part : facts.brand) {
    if (facts.has_brand) part = ReadProcessorLeaf(leaf++);
  }
  return facts;
}

// Waits until the timer is more than that many milliseconds beyond `start`: the time then. False
// when it stands.
bool WaitBeyond(MillisecondTimer timer, DWORD start, LONG milliseconds, DWORD& now) {
  // More readings than any processor does within one step of the coarsest timer, 55 milliseconds.
  constexpr int kStandingReadings = 20'000'000;
  now = start;
  for (int same = 0; static_cast<LONG>(now - start) <= milliseconds;) {
    const DWORD last = now;
    now = timer();
    same = now == last ? same + 1 : 0;
    if (same == kStandingReadings) return false;
  }
  return true;
}

// The multimedia library is an optional part of older systems.
bool MeasureMegahertz(std::uint32_t& megahertz) {
  constexpr std::array<const char*, 1> kTimer = {"timeGetTime"};
  BoundLibrary<kTimer.size()> multimedia;
  if (multimedia.Bind("WINMM.DLL", kTimer))
    return CountMegahertz(multimedia.Get<MillisecondTimer>(0), megahertz);
  return CountMegahertz(GetTickCount, megahertz);
}

std::uint32_t ReadStatedMegahertz(unsigned index) {
  char key[80];
  wsprintfA(key, "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\%d", static_cast<int>(index));
  return ReadRegistryValue(HKEY_LOCAL_MACHINE, key, "~MHz").FirstNumber();
}

bool WriteAnswer(std::span<char> text, bool answer) {
  CopyText(text.data(), text.size(), YesOrNo(answer));
  return true;
}

}  // namespace

void FormatProcessorName(const ProcessorNameFacts& facts, std::span<char> text) {
  if (facts.age != ProcessorAge::kIdentifiable) {
    wsprintfA(text.data(), "%s (no processor identification)",
              facts.age == ProcessorAge::k80386 ? "80386" : "80486");
    return;
  }
  char vendor[16] = {};
  const std::uint32_t parts[] = {facts.vendor.ebx, facts.vendor.edx, facts.vendor.ecx};
  std::memcpy(vendor, parts, sizeof parts);
  char brand[64] = {};
  static_assert(sizeof facts.brand == 48);
  if (facts.has_brand) std::memcpy(brand, facts.brand, sizeof facts.brand);
  wsprintfA(text.data(), "%s %s", vendor, brand);
}

std::uint32_t ReadStandardFeatures() {
  return HasStandardLeaves() ? ReadProcessorLeaf(1).edx : 0;
}

std::uint32_t ReadExtendedFeatures() {
  if (!HasStandardLeaves() || !HasExtendedLeaf(kExtendedFeaturesLeaf)) return 0;
  return ReadProcessorLeaf(kExtendedFeaturesLeaf).edx;
}

bool CountMegahertz(MillisecondTimer timer, std::uint32_t& megahertz) {
  megahertz = 0;
  // From just behind a step of the timer on.
  DWORD start = 0;
  if (!WaitBeyond(timer, timer(), 1, start)) return false;
  const std::uint32_t before = ReadTimeStampCounter();
  DWORD end = 0;
  if (!WaitBeyond(timer, start, 500, end)) return false;
  megahertz = Megahertz(before, ReadTimeStampCounter());
  return true;
}

unsigned CountProcessors() {
  SYSTEM_INFO info = {};
  GetSystemInfo(&info);
  return info.dwNumberOfProcessors;
}

bool MeasureProcessorSpeed(const ProbeContext& context, unsigned index, std::uint32_t& megahertz) {
  megahertz = context.is_nt() ? ReadStatedMegahertz(index) : 0;
  if (megahertz != 0) return true;
  return HasTimeStampCounter(ReadStandardFeatures()) && MeasureMegahertz(megahertz);
}

bool FormatProcessorCount(ProbeContext&, std::span<char> text) {
  wsprintfA(text.data(), "%u", CountProcessors());
  return true;
}

bool ReadProcessorName(ProbeContext&, std::span<char> text) {
  FormatProcessorName(ReadNameFacts(), text);
  return true;
}

bool FormatProcessorSpeed(ProbeContext& context, std::span<char> text) {
  std::uint32_t megahertz = 0;
  if (MeasureProcessorSpeed(context, 0, megahertz)) {
    wsprintfA(text.data(), "%u MHz", static_cast<unsigned>(megahertz));
  } else {
    CopyText(text.data(), text.size(), kUnknown);
  }
  return true;
}

bool FormatCoprocessor(ProbeContext&, std::span<char> text) {
  if (IsIdentifiable()) return WriteAnswer(text, HasCoprocessor(ReadStandardFeatures()));
  CopyText(text.data(), text.size(), kUnknown);
  return true;
}

bool FormatMMX(ProbeContext&, std::span<char> text) {
  return WriteAnswer(text, HasMMX(ReadStandardFeatures()));
}

bool Format3DNow(ProbeContext&, std::span<char> text) {
  return WriteAnswer(text, Has3DNow(ReadExtendedFeatures()));
}

bool FormatExtended3DNow(ProbeContext&, std::span<char> text) {
  return WriteAnswer(text, HasExtended3DNow(ReadExtendedFeatures()));
}

bool FormatSSE(ProbeContext&, std::span<char> text) {
  return WriteAnswer(text, HasSSE(ReadStandardFeatures()));
}

bool FormatSSE2(ProbeContext&, std::span<char> text) {
  return WriteAnswer(text, HasSSE2(ReadStandardFeatures()));
}

}  // namespace hostscope
