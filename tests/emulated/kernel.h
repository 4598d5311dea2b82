// A kernel for one program, as small as it can be: it gives the program what Windows 95/98/Me gives
// as far as ports go, and what other systems give instead.
#pragma once

#include <cstdint>

namespace emulated {

enum class Access : std::uint8_t { kWritable, kReadOnly, kKernelOnly };

// What a program is told of the table's place.
enum class Told : std::uint8_t { kTruth, kNothing, kOtherMemory, kCopy };

// The descriptor table that the program finds.
struct TableSetup {
  std::uint16_t limit = 0xFFF;
  std::uint16_t flat_code = 0x28;  // its selector, 0 for none
  bool is_full = false;
  bool lies_low = false;  // where memory is a program's own
  Access access = Access::kWritable;
  Told told = Told::kTruth;
};

struct TableState {
  bool was_written;  // even if it was put back
  bool is_as_before;
};

struct Steps {
  std::uint32_t count = 0;        // of the program itself
  std::uint32_t other_count = 0;  // of the other one in its second turn
  bool intruded = false;  // the kernel took the slot meanwhile, and it is still the kernel's
  bool well = true;       // nothing of what no step may bring about
};

// Two programs take turns. The other one begins, then come a number of instructions of the program
// itself, then a number of the other's; then each runs to its end.
struct Turns {
  void (*other)();  // ends by LeaveProcessor
  bool
      up_to_claim;  // the other's first turn ends ahead of its claim of the slot, or is none at all
  std::uint32_t own_steps;
  std::uint32_t other_steps;
};

// The kernel's services for the program, each by an interrupt.
void Put(char character);
void PrepareTable(const TableSetup& setup);
TableState ExamineTable();
// The system gives the last slot of the table to something else, or takes it back.
void TakeLastSlot(bool taken);
// From here to EndSteps the kernel looks at the table after every instruction, and after that
// number of them it takes the last slot if that is free, or else as soon as a gate stands in it.
constexpr std::uint32_t kNever = 0xFFFFFFFE;
constexpr std::uint32_t kOnceAGateStands = 0xFFFFFFFF;
void BeginSteps(std::uint32_t intrude_after);
// The same with another program, and without the kernel's taking anything.
void BeginTurns(const Turns& turns);
// From here to EndSteps no gate may stand.
void ForbidGates();
// The other of two programs goes on, if there is one: until further notice, for ever, not at all.
void Yield();
[[noreturn]] void LeaveProcessor();
void KillOther();
Steps EndSteps();
// Whether the timer ticks; waits for the first tick.
bool TimerRuns();
[[noreturn]] void Exit(bool success);

// Tries an access of the program to memory or a port: the number of the fault, 0 for none.
extern "C" {
std::uint32_t TryReadMemory(std::uint32_t address) asm("try_read_memory");
std::uint32_t TryWriteMemory(std::uint32_t address) asm("try_write_memory");
std::uint32_t TryReadPort(std::uint32_t port) asm("try_read_port");
std::uint32_t TryWritePort(std::uint32_t port) asm("try_write_port");
}

// The program. The words are those given to the emulator for the kernel.
void RunProgram(const char* words);

}  // namespace emulated
