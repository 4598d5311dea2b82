#include "tests/emulated/kernel.h"

#include <cstring>

namespace emulated {

// What the loader of the emulator looks for at the file's beginning: where to put the file, all of
// it, and where to start.
asm(R"asm(
    .section .init, "xr"
    .p2align 2
multiboot_header:
    .long 0x1BADB002, 0x00010000, -(0x1BADB002 + 0x00010000)
    .long multiboot_header, multiboot_header, 0, 0, boot
    .globl boot
boot:
    movl $kernel_stack + 16384, %esp
    pushl %ebx
    call start_kernel

# Each trap has 16 bytes; those without an error code of the processor get one.
    .p2align 4
trap_entries:
    .set vector, 0
    .rept 129
    .p2align 4
    .if vector > 31 || !(0x27D00 >> vector & 1)
    pushl $0
    .endif
    pushl $vector
    jmp trap_common
    .set vector, vector + 1
    .endr
trap_common:
    pushal
    pushl %esp
    call handle_trap
    movl %eax, %esp
    popal
    addl $8, %esp
    iretl

# enter_program(function, argument)
enter_program:
    movl 4(%esp), %eax
    movl 8(%esp), %ecx
    movl $0x23, %edx
    movl %edx, %ds
    movl %edx, %es
    movl %edx, %fs
    movl %edx, %gs
    movl $program_stack + 65536 - 8, %ebx
    movl %ecx, 4(%ebx)
    pushl %edx
    pushl %ebx
    pushl $0x202
    pushl $0x1B
    pushl %eax
    iretl

    .macro attempt name, instruction
\name:
    movl 4(%esp), %edx
    movl $1f, recover_at
    xorl %eax, %eax
    \instruction
    xorl %eax, %eax
1:  movl $0, recover_at
    ret
    .endm
    attempt try_read_memory, "movb (%edx), %al"
    attempt try_write_memory, "lock orb $0, (%edx)"
    attempt try_read_port, "inb %dx, %al"
    attempt try_write_port, "outb %al, %dx"

    .globl try_read_memory, try_write_memory, try_read_port, try_write_port
    .text
)asm");

namespace {
extern "C" {
extern char trap_entries[] asm("trap_entries");
extern char kernel_stack[] asm("kernel_stack");
extern char program_stack[] asm("program_stack");
extern volatile std::uint32_t recover_at asm("recover_at");
alignas(16) char kernel_stack[16384];
alignas(16) char program_stack[65536];
alignas(16) char other_kernel_stack[sizeof(kernel_stack)];
alignas(16) char other_stack[16384];
// Where a program goes on that tries what may fault; 0 when nobody tries.
volatile std::uint32_t recover_at = 0;
void EnterProgram(void (*program)(const char*), const char* words) asm("enter_program");
}

void Out(std::uint16_t port, std::uint8_t value) {
  asm volatile("outb %0, %1" : : "a"(value), "d"(port));
}

// --- Memory ---

constexpr std::uint32_t kPresent = 1;
constexpr std::uint32_t kWritable = 2;
constexpr std::uint32_t kForPrograms = 4;
constexpr std::uint32_t kDirty = 0x40;
constexpr std::uint32_t kPage = 0x1000;
constexpr std::uint32_t kSystemMemory = 0xC0000000;

using PageTable = std::uint32_t[1024];
alignas(kPage) PageTable directory;
alignas(kPage) PageTable low_pages;   // the first 4 MB, one to one
alignas(kPage) PageTable high_pages;  // of the system's memory

std::uint32_t AddressOf(const volatile void* memory) {
  return reinterpret_cast<std::uint32_t>(memory);
}

void ForgetTranslations() {
  asm volatile("movl %0, %%cr3" : : "r"(directory) : "memory");
}

void StartPaging() {
  constexpr std::uint32_t kOpen = kPresent | kWritable | kForPrograms;
  for (std::uint32_t i = 0; i < 1024; ++i)
    low_pages[i] = i * kPage | kOpen;
  directory[0] = AddressOf(low_pages) | kOpen;
  directory[kSystemMemory >> 22] = AddressOf(high_pages) | kOpen;
  ForgetTranslations();
  asm volatile(
      "movl %%cr0, %%eax\n\t"
      "orl $0x80000000, %%eax\n\t"
      "movl %%eax, %%cr0"
      :
      :
      : "eax", "memory");
}

// --- The descriptor table ---

struct Descriptor {
  std::uint32_t low;
  std::uint32_t high;
};

constexpr std::uint16_t kKernelCode = 0x08;
constexpr std::uint16_t kTaskState = 0x30;

// All are marked as used, so that the processor writes nothing itself. The kernel's own code
// segment ends a page too early to count as flat.
constexpr Descriptor kEveryTable[] = {
    {0, 0},
    {0x0000FFFE, 0x00CF9B00},  // 08: the kernel's code
    {0x0000FFFF, 0x00CF9300},  // 10: its data
    {0x0000FFFF, 0x00CFFB00},  // 18: the program's code
    {0x0000FFFF, 0x00CFF300},  // 20: its data
    {0, 0},                    // 28: flat code, as a rule
    {0, 0},                    // 30: the task state
    {0x17370FFF, 0x00009B01},  // 38: code of 16 bits
    {0x0000FFFF, 0x01CF9B00},  // 40: code that begins at 16 MB
    {0x0000FFFF, 0x00CF9F00},  // 48: code for everyone that keeps the caller's rights
    {0x10000067, 0x0000E900},  // 50: an idle task
    {0x00081000, 0x0010EC00},  // 58: a call gate for programs
    {0x00081000, 0x00008C00},  // 60: one for the kernel
    {0x00081000, 0x0000E400},  // 68: one of 16 bits
    {0x00300000, 0x0000E500},  // 70: a task gate
    {0x00081000, 0x0010EE00},  // 78: an interrupt gate, which means nothing here
    {0x0000001F, 0x0000E200},  // 80: a local table
    {0x0000FFFF, 0x00CF7300},  // 88: the program's data, swapped out
    {0x000002FF, 0x0040F304},  // 90: small data
    {0x00000000, 0x0000E800},  // 98: reserved
    {0x10000067, 0x0000EB00},  // A0: a busy task
};
constexpr Descriptor kTaken{0x0000FFFE, 0x00009300};  // bit 0 is clear, as in a free slot

constexpr unsigned kSlots = kPage / sizeof(Descriptor);
struct alignas(kPage) Table {
  Descriptor slots[kSlots];
};
Table table;
Table other_memory;
Table table_before;
Table other_before;
unsigned tables_made = 0;
unsigned last_slot = 0;
std::uint32_t* table_page = nullptr;
std::uint32_t* other_page = nullptr;

struct __attribute__((packed)) TableRegister {
  std::uint16_t limit;
  std::uint32_t address;
};
TableRegister told_register;

struct TaskState {
  std::uint32_t unused_link;
  std::uint32_t kernel_stack;
  std::uint32_t kernel_stack_segment;
  std::uint32_t unused[22];
  std::uint32_t ports;
};
TaskState task_state;

void SetSlot(Table& target, unsigned index, Descriptor value) {
  target.slots[index].low = value.low;
  target.slots[index].high = value.high;
}

void FillTable(const TableSetup& setup) {
  constexpr unsigned kFixed = sizeof(kEveryTable) / sizeof(Descriptor);
  for (unsigned i = 0; i < kSlots; ++i)
    SetSlot(table, i, i < kFixed ? kEveryTable[i] : setup.is_full ? kTaken : Descriptor{});
  const std::uint32_t task = AddressOf(&task_state);
  SetSlot(table, kTaskState / 8,
          {task << 16 | 103, (task & 0xFF000000) | 0x8B00 | (task >> 16 & 0xFF)});
  if (setup.flat_code != 0) SetSlot(table, setup.flat_code / 8, {0x0000FFFF, 0x00CF9B00});
  if (setup.flat_code != 0x28) SetSlot(table, 0x28 / 8, kTaken);
}

// What lies where the program believes the table: not quite it, or all of it.
void FillOtherMemory(Told told) {
  other_memory = table;
  if (told == Told::kOtherMemory) SetSlot(other_memory, 0x20 / 8, kTaken);
}

void LoadTable(TableRegister place) {
  asm volatile("lgdt %0" : : "m"(place));
}

// Once lies are told, the processor does not answer programs itself any more, as under UMIP, and
// each SGDT is a fault that the kernel answers with this.
void TellTableRegister(Told told, TableRegister truth, std::uint32_t other_address) {
  told_register = told == Told::kTruth     ? truth
                  : told == Told::kNothing ? TableRegister{0, 0xFFFE0000}
                                           : TableRegister{truth.limit, other_address};
  if (told == Told::kTruth) return;
  asm volatile(
      "movl %%cr4, %%eax\n\t"
      "orl $0x800, %%eax\n\t"
      "movl %%eax, %%cr4"
      :
      :
      : "eax");
}

// Each time elsewhere, so that nobody mistakes the table for the one before.
void MakeTable(const TableSetup& setup) {
  last_slot = setup.limit < kPage ? setup.limit / sizeof(Descriptor) : kSlots - 1;
  LoadTable({setup.limit, AddressOf(&table)});
  FillTable(setup);
  FillOtherMemory(setup.told);
  table_before = table;
  other_before = other_memory;
  memset(high_pages, 0, sizeof(high_pages));
  const unsigned place = 0xAB + 4 * (tables_made++ % 128);
  const std::uint32_t rights = setup.access == Access::kWritable   ? kWritable | kForPrograms
                               : setup.access == Access::kReadOnly ? kForPrograms
                                                                   : 0;
  high_pages[place] = AddressOf(&table) | rights | kPresent;
  high_pages[place + 2] = AddressOf(&other_memory) | kPresent | kWritable | kForPrograms;
  table_page = setup.lies_low ? &low_pages[AddressOf(&table) / kPage] : &high_pages[place];
  other_page = &high_pages[place + 2];
  *table_page &= ~kDirty;
  ForgetTranslations();
  const TableRegister truth{setup.limit,
                            setup.lies_low ? AddressOf(&table) : kSystemMemory + place * kPage};
  LoadTable(truth);
  TellTableRegister(setup.told, truth, kSystemMemory + (place + 2) * kPage);
}

bool AreSame(const Table& first, const Table& second) {
  return memcmp(&first, &second, sizeof(Table)) == 0;
}

// --- Steps ---

// What a trap leaves on the kernel's stack.
struct Frame {
  std::uint32_t edi, esi, ebp, unused, ebx, edx, ecx, eax;
  std::uint32_t vector, error, eip, cs, flags, esp, ss;
};

constexpr std::uint32_t kStepFlag = 0x100;
constexpr std::uint32_t kInterruptFlag = 0x200;

struct {
  std::uint32_t intrude_after;
  Steps steps;
  Descriptor before;  // what stood in the slot after the last step
  bool gates_forbidden;
} stepping;

bool IsGate(Descriptor descriptor) {
  return (descriptor.high & 0x8000) != 0;
}

// Of a gate for programs, which the kernel's own descriptor is not.
bool IsWhole(Descriptor gate) {
  return (gate.low >> 16 & ~3U) == 0x28 && (gate.high & 0xFFFF) == 0xEC00;
}

bool SlotIsWell(Descriptor last) {
  const auto& [intrude_after, steps, before, gates_forbidden] = stepping;
  // Who wants the slot as well may touch the bit of its claim for a moment.
  constexpr std::uint32_t kClaim = 0x10000;
  if (steps.intruded)
    return (last.low | kClaim) == (kTaken.low | kClaim) && last.high == kTaken.high;
  if (!IsGate(last)) return true;
  const bool is_changed = IsGate(before) && (before.low != last.low || before.high != last.high);
  return IsWhole(last) && !is_changed && !gates_forbidden;
}

// The transfer itself can't be interrupted, and everything of a program can.
bool FlagsAreWell(const Frame& frame) {
  const std::uint8_t next = *reinterpret_cast<const std::uint8_t*>(frame.eip);
  const bool is_transfer = next == 0x66 || (next >= 0xEC && next <= 0xEF);
  const bool may_interrupt = (frame.flags & kInterruptFlag) != 0;
  return frame.cs == 0x28 ? !is_transfer || !may_interrupt : may_interrupt;
}

void LookAfterStep(const Frame& frame) {
  auto& [intrude_after, steps, before, gates_forbidden] = stepping;
  const Descriptor last{table.slots[last_slot].low, table.slots[last_slot].high};
  steps.well &= SlotIsWell(last) && FlagsAreWell(frame);
  before = last;
  const bool is_free = last.low == 0 && last.high == 0;
  if (intrude_after == kOnceAGateStands ? IsGate(last) && !steps.intruded
                                        : is_free && steps.count == intrude_after) {
    SetSlot(table, last_slot, kTaken);
    steps.intruded = true;
  }
}

// --- Turns ---

// Each program has a stack in the kernel of its own, so that the other can go on even when one is
// in the middle of a call of a gate.
struct {
  Turns turns;
  unsigned turn;
  bool is_other;   // who has the processor
  Frame* waiting;  // who has not; null: there is none
} sharing;
constexpr unsigned kLastTurn = 3;

Frame* Switch(Frame* frame) {
  Frame* const next = sharing.waiting;
  sharing.waiting = frame;
  sharing.is_other = !sharing.is_other;
  task_state.kernel_stack =
      AddressOf(sharing.is_other ? other_kernel_stack : kernel_stack) + sizeof(kernel_stack);
  return next;
}

bool IsAheadOfClaim(const Frame& frame) {
  constexpr std::uint8_t kLockedBitInstruction[] = {0xF0, 0x0F, 0xBA};
  return memcmp(reinterpret_cast<const void*>(frame.eip), kLockedBitInstruction, 3) == 0;
}

bool IsTurnOver(const Frame& frame) {
  const auto& [turns, turn, is_other, waiting] = sharing;
  switch (turn) {
    case 0:
      return IsAheadOfClaim(frame);
    case 1:
      return stepping.steps.count == turns.own_steps;
    case 2:
      return stepping.steps.other_count == turns.other_steps;
    default:
      return false;
  }
}

Frame* CountStep(Frame* frame) {
  Steps& steps = stepping.steps;
  if (!sharing.is_other) ++steps.count;
  if (sharing.turn == 2) ++steps.other_count;
  LookAfterStep(*frame);
  if (sharing.waiting == nullptr || !IsTurnOver(*frame)) return frame;
  ++sharing.turn;
  return Switch(frame);
}

Frame* StartTurns(Frame* frame, const Turns& turns) {
  constexpr std::uint32_t kRoomForACall = 8;
  auto* const other = reinterpret_cast<Frame*>(other_kernel_stack + sizeof(other_kernel_stack)) - 1;
  *other = {};
  other->eip = reinterpret_cast<std::uint32_t>(turns.other);
  other->cs = 0x1B;
  other->flags = 0x202 | kStepFlag;
  other->esp = AddressOf(other_stack) + sizeof(other_stack) - kRoomForACall;
  other->ss = 0x23;
  sharing = {turns, turns.up_to_claim ? 0U : 1U, false, other};
  return turns.up_to_claim ? Switch(frame) : frame;
}

// Whoever goes on has no further turns to mind.
Frame* GiveAway(Frame* frame, bool for_ever) {
  if (sharing.waiting == nullptr) return frame;
  sharing.turn = kLastTurn;
  Frame* const next = Switch(frame);
  if (for_ever) sharing.waiting = nullptr;
  return next;
}

// --- Traps ---

enum class Service : std::uint32_t {
  kPut,
  kPrepareTable,
  kExamineTable,
  kTakeLastSlot,
  kBeginSteps,
  kBeginTurns,
  kForbidGates,
  kYield,
  kLeave,
  kKillOther,
  kEndSteps,
  kTimerRuns,
  kExit,
};

constexpr std::uint32_t kSingleStep = 1;
constexpr std::uint32_t kProtectionFault = 13;
constexpr std::uint32_t kTimer = 0x20;
constexpr std::uint32_t kServices = 0x80;

volatile std::uint32_t timer_ticks = 0;

void PutText(const char* text) {
  for (; *text != 0; ++text)
    Out(0xE9, static_cast<std::uint8_t>(*text));
}

[[noreturn]] void Stop(bool success) {
  // The emulator's exit code is twice this and one more; a small one is its own.
  Out(0xF4, success ? 16 : 17);
  for (;;)
    asm volatile("hlt");
}

// The frame of who goes on.
Frame* Serve(Frame& frame) {
  void* const argument = reinterpret_cast<void*>(frame.ebx);
  switch (static_cast<Service>(frame.eax)) {
    case Service::kPut:
      Out(0xE9, static_cast<std::uint8_t>(frame.ebx));
      return &frame;
    case Service::kPrepareTable:
      MakeTable(*static_cast<const TableSetup*>(argument));
      return &frame;
    case Service::kExamineTable:
      *static_cast<TableState*>(argument) = {
          ((*table_page | *other_page) & kDirty) != 0,
          AreSame(table, table_before) && AreSame(other_memory, other_before)};
      return &frame;
    case Service::kTakeLastSlot:
      SetSlot(table, last_slot, frame.ebx != 0 ? kTaken : Descriptor{});
      return &frame;
    case Service::kBeginSteps:
      stepping = {frame.ebx, {}, {}, false};
      frame.flags |= kStepFlag;
      return &frame;
    case Service::kBeginTurns:
      stepping = {kNever, {}, {}, false};
      frame.flags |= kStepFlag;
      return StartTurns(&frame, *static_cast<const Turns*>(argument));
    case Service::kForbidGates:
      stepping.gates_forbidden = true;
      return &frame;
    case Service::kYield:
      return GiveAway(&frame, false);
    case Service::kLeave:
      return GiveAway(&frame, true);
    case Service::kKillOther:
      sharing.waiting = nullptr;
      return &frame;
    case Service::kEndSteps:
      if (sharing.waiting != nullptr) {
        // Asked again when the other one is over.
        frame.eip -= 2;
        return GiveAway(&frame, false);
      }
      frame.flags &= ~kStepFlag;
      stepping.steps.well &= !stepping.steps.intruded || table.slots[last_slot].low == kTaken.low;
      *static_cast<Steps*>(argument) = stepping.steps;
      return &frame;
    case Service::kTimerRuns:
      frame.eax = timer_ticks != 0;
      return &frame;
    case Service::kExit:
      Stop(frame.ebx != 0);
  }
  __builtin_unreachable();
}

// SGDT with a register or a register and a displacement as its address, as compilers write it.
bool AnswerTableQuestion(Frame& frame) {
  const auto* code = reinterpret_cast<const std::uint8_t*>(frame.eip);
  if (code[0] != 0x0F || code[1] != 0x01 || (code[2] & 0x38) != 0) return false;
  const unsigned mode = code[2] >> 6;
  const unsigned base = code[2] & 7;
  const std::uint32_t registers[] = {frame.eax, frame.ecx, frame.edx, frame.ebx,
                                     frame.esp, frame.ebp, frame.esi, frame.edi};
  if (mode > 1 || (mode == 0 && base == 5)) return false;
  std::uint32_t length = 3;
  if (base == 4 && code[length++] != 0x24) return false;
  std::uint32_t address = registers[base];
  if (mode == 1) address += static_cast<std::int8_t>(code[length++]);
  memcpy(reinterpret_cast<void*>(address), &told_register, sizeof(told_register));
  frame.eip += length;
  return true;
}

void HandleFault(Frame& frame) {
  if (frame.vector == kProtectionFault && AnswerTableQuestion(frame)) return;
  if (recover_at != 0) {
    frame.eip = recover_at;
    frame.eax = frame.vector;
    return;
  }
  PutText("unexpected fault ");
  Out(0xE9, static_cast<std::uint8_t>('0' + frame.vector / 10));
  Out(0xE9, static_cast<std::uint8_t>('0' + frame.vector % 10));
  PutText("\n");
  Stop(false);
}

extern "C" Frame* HandleTrap(Frame* frame) asm("handle_trap");
Frame* HandleTrap(Frame* frame) {
  switch (frame->vector) {
    case kTimer:
      timer_ticks = timer_ticks + 1;
      Out(0x20, 0x20);
      return frame;
    case kSingleStep:
      return CountStep(frame);
    case kServices:
      return Serve(*frame);
    default:
      HandleFault(*frame);
      return frame;
  }
}

Descriptor traps[129];

void StartTraps() {
  for (std::uint32_t i = 0; i < 129; ++i) {
    const std::uint32_t entry = AddressOf(trap_entries + 16 * i);
    traps[i] = {kKernelCode << 16 | (entry & 0xFFFF),
                (entry & 0xFFFF0000) | (i == kServices ? 0xEE00 : 0x8E00)};
  }
  const TableRegister all{sizeof(traps) - 1, AddressOf(traps)};
  asm volatile("lidt %0" : : "m"(all));
}

// One thousand interrupts a second, so that some come at the most unwelcome moment.
void StartTimer() {
  constexpr std::uint8_t kFirst[] = {0x11, kTimer, 4, 1, 0xFE};
  constexpr std::uint8_t kSecond[] = {0x11, 0x28, 2, 1, 0xFF};
  for (unsigned i = 0; i < sizeof(kFirst); ++i) {
    Out(i == 0 ? 0x20 : 0x21, kFirst[i]);
    Out(i == 0 ? 0xA0 : 0xA1, kSecond[i]);
  }
  Out(0x43, 0x34);
  Out(0x40, 1193 & 0xFF);
  Out(0x40, 1193 >> 8);
}

// A system leaves the drive selected that it used last. The firmware leaves the one that it looked
// for last, which answers nothing when it is not there.
void SelectMasters() {
  Out(0x1F6, 0xA0);
  Out(0x176, 0xA0);
}

void StartSegments() {
  task_state.kernel_stack = AddressOf(kernel_stack) + sizeof(kernel_stack);
  task_state.kernel_stack_segment = 0x10;
  task_state.ports = sizeof(TaskState) << 16;  // beyond the end: no port is open to the program
  MakeTable({});
  table.slots[kTaskState / 8].high = table.slots[kTaskState / 8].high & ~0x200U;
  asm volatile(
      "ljmp %0, $1f\n"
      "1:\tmovl %1, %%ss\n\t"
      "ltr %w2"
      :
      : "i"(kKernelCode), "r"(0x10), "r"(static_cast<std::uint32_t>(kTaskState))
      : "memory");
}

struct BootFacts {
  std::uint32_t flags;
  std::uint32_t unused[3];
  const char* words;
};

extern "C" [[noreturn]] void StartKernel(const BootFacts& facts) asm("start_kernel");
void StartKernel(const BootFacts& facts) {
  StartPaging();
  StartSegments();
  StartTraps();
  StartTimer();
  SelectMasters();
  EnterProgram(RunProgram, (facts.flags & 4) != 0 ? facts.words : "");
  Stop(false);
}

std::uint32_t Ask(Service service, std::uint32_t argument = 0) {
  auto number = static_cast<std::uint32_t>(service);
  asm volatile("int $0x80" : "+a"(number) : "b"(argument) : "memory");
  return number;
}

}  // namespace

void Put(char character) {
  Ask(Service::kPut, static_cast<std::uint8_t>(character));
}
void PrepareTable(const TableSetup& setup) {
  Ask(Service::kPrepareTable, AddressOf(&setup));
}
TableState ExamineTable() {
  TableState state;
  Ask(Service::kExamineTable, AddressOf(&state));
  return state;
}
void TakeLastSlot(bool taken) {
  Ask(Service::kTakeLastSlot, taken);
}
void BeginSteps(std::uint32_t intrude_after) {
  Ask(Service::kBeginSteps, intrude_after);
}
void BeginTurns(const Turns& turns) {
  Ask(Service::kBeginTurns, AddressOf(&turns));
}
void ForbidGates() {
  Ask(Service::kForbidGates);
}
void Yield() {
  Ask(Service::kYield);
}
void LeaveProcessor() {
  Ask(Service::kLeave);
  __builtin_unreachable();
}
void KillOther() {
  Ask(Service::kKillOther);
}
Steps EndSteps() {
  Steps steps;
  Ask(Service::kEndSteps, AddressOf(&steps));
  return steps;
}
bool TimerRuns() {
  // A run without drives may be over before the first tick, above all on a busy computer.
  constexpr int kMostQuestions = 5'000'000;
  for (int i = 0; i < kMostQuestions; ++i) {
    if (Ask(Service::kTimerRuns) != 0) return true;
  }
  return false;
}
void Exit(bool success) {
  Ask(Service::kExit, success);
  __builtin_unreachable();
}

}  // namespace emulated
