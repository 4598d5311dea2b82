// Windows 95/98/Me keeps the global descriptor table where every program can write. A call gate in
// a free slot of it lets a few instructions run in kernel mode, where ports can be reached. The
// gate stands for one transfer at a time.
//
// Nothing may go wrong where that is not so. NT is told by its version. Elsewhere, as under Wine or
// in a virtual machine, the address that the processor gives for the table may be invented or
// another system's. So memory counts as the table only when the processor judges each selector as
// the memory says, and a gate is called only when the processor sees it.
#include "platform/ports.h"

#include <atomic>

#include "platform/win32.h"

namespace hostscope {

// Not among the unnamed, so that a test can let transfers begin again.
constinit std::atomic<bool> port_transfers_ended{false};

namespace {

struct Descriptor {
  std::uint32_t low;
  std::uint32_t high;
};

// The system's part of the address space begins here; what lies below is the program's own, and so
// never the one table of all programs.
constexpr std::uint32_t kSystemMemory = 0x80000000;

// Of a descriptor's high half.
constexpr std::uint32_t kPresent = 0x8000;
constexpr std::uint32_t kForPrograms = 0x6000;  // the privilege level, all bits of it
constexpr std::uint32_t kSegment = 0x1000;      // and no gate or other part of the system
constexpr std::uint32_t kTypeMask = 0x0F00;
constexpr std::uint32_t kConformingCode = 0x0C00;
constexpr std::uint32_t kGateForPrograms = kPresent | kForPrograms | 0x0C00;
constexpr std::uint32_t kRightsMask = 0xFF00;
constexpr std::uint32_t kSegmentRightsMask = 0x00F0FE00;  // the processor itself sets bit 8

// Code of 32 bits for the kernel alone, from address 0 to the end of memory.
constexpr Descriptor kFlatCode{0x0000FFFF, 0x00CF9800};
constexpr std::uint32_t kFlatCodeMask = 0xFFEFFCFF;

constexpr std::uint16_t kSelectorLevel = 3;  // of programs

// --- What the processor says ---

// None of these may be inlined: the gate over the finished program lets exactly the functions that
// it names hold such instructions.

struct __attribute__((packed)) TableRegister {
  std::uint16_t limit;
  std::uint32_t address;

  bool operator==(const TableRegister&) const = default;
};

__attribute__((noinline)) TableRegister ReadTableRegister() {
  TableRegister table;
  asm volatile("sgdt %0" : "=m"(table));
  return table;
}

// The high half of a descriptor without its address, as far as the processor shows it to programs;
// 0 when it does not.
__attribute__((noinline)) std::uint32_t ReadAccessRights(std::uint32_t selector) {
  std::uint32_t rights = 0;
  asm volatile("lar %1, %0" : "+r"(rights) : "r"(selector) : "cc", "memory");
  return rights;
}

// --- The table ---

// Whether the processor shows this descriptor to programs.
bool IsShown(std::uint32_t high) {
  if ((high & kSegment) != 0 && (high & kConformingCode) == kConformingCode) return true;
  if ((high & kForPrograms) != kForPrograms) return false;
  if ((high & kSegment) != 0) return true;
  // Task states, the local table, call and task gates.
  constexpr std::uint32_t kShownTypes = 0b0001'1010'0011'1110;
  return (kShownTypes >> ((high & kTypeMask) >> 8) & 1) != 0;
}

bool AgreesWithProcessor(std::uint32_t selector, std::uint32_t high) {
  const std::uint32_t rights = ReadAccessRights(selector);
  if (!IsShown(high)) return rights == 0;
  const std::uint32_t mask = (high & kSegment) != 0 ? kSegmentRightsMask : kRightsMask;
  return rights != 0 && ((rights ^ high) & mask) == 0;
}

bool IsFlatCode(const volatile Descriptor& descriptor) {
  return descriptor.low == kFlatCode.low && (descriptor.high & kFlatCodeMask) == kFlatCode.high;
}

bool IsEmpty(const volatile Descriptor& descriptor) {
  return descriptor.low == 0 && descriptor.high == 0;
}

// Where a gate can stand, and the code segment that it leads into.
struct GateSite {
  TableRegister table;
  volatile Descriptor* slot;  // null for none
  const volatile Descriptor* code;
  std::uint16_t slot_selector;
  std::uint16_t code_selector;
};

// The last free slot of the table, since the system itself gives away the first. No slot when the
// memory is not the table, or has no slot or no code segment.
GateSite SearchTable(TableRegister table) {
  GateSite site{};
  site.table = table;
  auto* const descriptors = reinterpret_cast<volatile Descriptor*>(table.address);
  // The processor never looks at the first descriptor.
  const std::uint32_t count = (table.limit + 1U) / sizeof(Descriptor);
  volatile Descriptor* free_slot = nullptr;
  for (std::uint32_t i = 1; i < count; ++i) {
    const std::uint32_t selector = i * sizeof(Descriptor);
    volatile Descriptor& descriptor = descriptors[i];
    if (!AgreesWithProcessor(selector | kSelectorLevel, descriptor.high)) return site;
    if (IsEmpty(descriptor)) {
      free_slot = &descriptor;
      site.slot_selector = static_cast<std::uint16_t>(selector | kSelectorLevel);
    } else if (IsFlatCode(descriptor) && site.code == nullptr) {
      site.code = &descriptor;
      site.code_selector = static_cast<std::uint16_t>(selector);
    }
  }
  if (site.code != nullptr) site.slot = free_slot;
  return site;
}

bool IsReadable(TableRegister table) {
  return table.address >= kSystemMemory && table.limit <= ~table.address &&
         !IsBadReadPtr(reinterpret_cast<const void*>(table.address), table.limit + 1U);
}

GateSite FindSite() {
  constexpr DWORD kNotNt = 0x80000000;
  if ((GetVersion() & kNotNt) == 0) return {};
  const TableRegister table = ReadTableRegister();
  if (!IsReadable(table)) return {};
  GateSite site = SearchTable(table);
  if (site.slot == nullptr ||
      IsBadWritePtr(const_cast<Descriptor*>(site.slot), sizeof(Descriptor))) {
    return {};
  }
  return site;
}

// As found for the last transfer; only the thread that writes the report asks for transfers.
constinit GateSite known_site{};

bool StillStands(const GateSite& site) {
  return site.slot != nullptr && ReadTableRegister() == site.table && IsEmpty(*site.slot) &&
         IsFlatCode(*site.code);
}

// Whether a gate can be placed. Looks through the table only when the known site is none any more.
bool HaveSite() {
  if (!StillStands(known_site)) known_site = FindSite();
  return known_site.slot != nullptr;
}

// --- The gate ---

// Of a descriptor's low half: the lowest bit of the selector that a gate leads to. The processor
// gives those two bits the caller's new level, whatever they are. It is set in each of our gates,
// so that who claims a slot changes nothing of a gate that stands in it.
constexpr unsigned kClaimBit = 16;
constexpr std::uint32_t kClaim = 1U << kClaimBit;

// Another program may get the processor between any two instructions and want the same slot: only
// who turns the claim of an empty slot from 0 to 1, in one instruction, has it.
bool ClaimSlot(volatile Descriptor& slot) {
  bool was_set;
  asm volatile("lock btsl %2, %0" : "+m"(slot.low), "=@ccc"(was_set) : "i"(kClaimBit) : "memory");
  if (was_set) return false;
  if (slot.low == kClaim && slot.high == 0) return true;
  asm volatile("lock btrl %1, %0" : "+m"(slot.low) : "i"(kClaimBit) : "cc", "memory");
  return false;
}

// The half that makes it valid goes last when it is placed, and first when it is cleared.
bool PlaceGate(volatile Descriptor& slot, const Descriptor& gate) {
  if (!ClaimSlot(slot)) return false;
  slot.low = gate.low;
  slot.high = gate.high;
  return true;
}

// What is no gate of ours any more has been given away by the system meanwhile.
void ClearGate(volatile Descriptor& slot, const Descriptor& gate) {
  if (slot.low != gate.low || slot.high != gate.high) return;
  slot.high = 0;
  slot.low = 0;
}

// --- The transfers ---

// These run in kernel mode. They touch no segment register and no memory but the stack, and the
// transfer itself is not interrupted. The value goes through EAX, the port is in DX. Aligned, they
// lie in one page.
extern "C" {
void ReadByteInKernel() asm("read_byte_in_kernel");
void ReadWordInKernel() asm("read_word_in_kernel");
void WriteByteInKernel() asm("write_byte_in_kernel");
}

asm(R"(
    .section .text$kernel_routines, "xr"
    .p2align 5
read_byte_in_kernel:
    pushfl
    cli
    inb %dx, %al
    popfl
    lret
read_word_in_kernel:
    pushfl
    cli
    inw %dx, %ax
    popfl
    lret
write_byte_in_kernel:
    pushfl
    cli
    outb %al, %dx
    popfl
    lret
    .text
)");

__attribute__((noinline)) void CallGate(std::uint16_t selector, std::uint16_t port,
                                        std::uint32_t& value) {
  const struct __attribute__((packed)) {
    std::uint32_t offset;  // the gate has its own
    std::uint16_t selector;
  } gate{0, selector};
  asm volatile("lcall *%1" : "+a"(value) : "m"(gate), "d"(port) : "cc", "memory");
}

bool PassGate(void (*routine)(), std::uint16_t port, std::uint32_t& value) {
  const auto address = reinterpret_cast<std::uint32_t>(routine);
  // No page can be brought in while it runs in kernel mode. This brings the routine's in, so that
  // it is hardly gone again when it is called.
  static_cast<void>(*reinterpret_cast<const volatile std::uint8_t*>(address));
  const Descriptor gate{
      static_cast<std::uint32_t>(known_site.code_selector) << 16 | kClaim | (address & 0xFFFF),
      (address & 0xFFFF0000) | kGateForPrograms};
  if (!PlaceGate(*known_site.slot, gate)) return false;
  const bool is_live =
      (ReadAccessRights(known_site.slot_selector) & kRightsMask) == kGateForPrograms;
  if (is_live) CallGate(known_site.slot_selector, port, value);
  ClearGate(*known_site.slot, gate);
  return is_live;
}

constinit std::atomic<bool> transfer_under_way{false};

// Says so first and looks for the end then, while EndPortTransfers does it the other way round: one
// of the two sees the other.
bool Transfer(void (*routine)(), std::uint16_t port, std::uint32_t& value) {
  transfer_under_way.exchange(true);
  const bool done = !port_transfers_ended.load() && HaveSite() && PassGate(routine, port, value);
  transfer_under_way.store(false, std::memory_order_release);
  return done;
}

}  // namespace

bool ReadPortByte(std::uint16_t port, std::uint8_t& value) {
  std::uint32_t transferred = 0;
  if (!Transfer(ReadByteInKernel, port, transferred)) return false;
  value = static_cast<std::uint8_t>(transferred);
  return true;
}

bool ReadPortWord(std::uint16_t port, std::uint16_t& value) {
  std::uint32_t transferred = 0;
  if (!Transfer(ReadWordInKernel, port, transferred)) return false;
  value = static_cast<std::uint16_t>(transferred);
  return true;
}

bool WritePortByte(std::uint16_t port, std::uint8_t value) {
  std::uint32_t transferred = value;
  return Transfer(WriteByteInKernel, port, transferred);
}

void EndPortTransfers() {
  // Some seconds: a thread that somebody has ended in the middle of a transfer never comes to an
  // end.
  constexpr int kMostWaits = 1000;
  port_transfers_ended.exchange(true);
  for (int i = 0; i < kMostWaits && transfer_under_way.load(); ++i)
    Sleep(1);
}

}  // namespace hostscope
