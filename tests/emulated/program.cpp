// Runs without any rights, as hscope.exe does, and holds its very object code for controller ports:
// prints what the drives answer, and tries the ports where there is no way to them.
#include <array>
#include <atomic>
#include <string_view>

#include "platform/ports.h"
#include "probes/devices/ata_identify.h"
#include "tests/emulated/kernel.h"

// Of the object code itself.
namespace hostscope {
extern std::atomic<bool> port_transfers_ended;
}
namespace second_program {
bool ReadPortByte(std::uint16_t port, std::uint8_t& value);
}

namespace emulated {
namespace {

using namespace hostscope;

constexpr std::uint32_t kWindows98 = 0xC0000A04;
constexpr std::uint32_t kWindowsNt = 0x05650004;
std::uint32_t windows_version = kWindows98;

// --- What the object code imports of Windows ---

std::uint32_t __attribute__((stdcall)) GetVersion() {
  return windows_version;
}

using Attempt = std::uint32_t(std::uint32_t address);

std::uint32_t FailsAnywhere(std::uint32_t address, std::uint32_t size, Attempt& attempt) {
  constexpr std::uint32_t kPage = 0x1000;
  for (std::uint32_t offset = 0; offset < size; offset += kPage) {
    if (attempt(address + offset) != 0) return 1;
  }
  return size != 0 && attempt(address + size - 1) != 0;
}

std::uint32_t __attribute__((stdcall)) IsBadReadPtr(std::uint32_t address, std::uint32_t size) {
  return FailsAnywhere(address, size, TryReadMemory);
}

std::uint32_t __attribute__((stdcall)) IsBadWritePtr(std::uint32_t address, std::uint32_t size) {
  return FailsAnywhere(address, size, TryWriteMemory);
}

void __attribute__((stdcall)) Sleep(std::uint32_t) {
  Yield();
}

extern "C" {
extern const void* const import_sleep asm("__imp__Sleep@4");
const void* const import_sleep = reinterpret_cast<const void*>(Sleep);
extern const void* const import_get_version asm("__imp__GetVersion@0");
extern const void* const import_is_bad_read_ptr asm("__imp__IsBadReadPtr@8");
extern const void* const import_is_bad_write_ptr asm("__imp__IsBadWritePtr@8");
const void* const import_get_version = reinterpret_cast<const void*>(GetVersion);
const void* const import_is_bad_read_ptr = reinterpret_cast<const void*>(IsBadReadPtr);
const void* const import_is_bad_write_ptr = reinterpret_cast<const void*>(IsBadWritePtr);
}

// --- Output ---

void Put(std::string_view text) {
  for (const char character : text)
    emulated::Put(character);
}

void Put(std::uint32_t number) {
  if (number >= 10) Put(number / 10);
  emulated::Put(static_cast<char>('0' + number % 10));
}

template <typename... Parts>
void PutLine(const Parts&... parts) {
  (Put(parts), ...);
  emulated::Put('\n');
}

std::string_view YesOrNo(bool answer) {
  return answer ? "yes" : "no";
}

// --- Drives ---

void ShowDrives() {
  for (unsigned drive = 0; drive < kIdeDrives; ++drive) {
    IdentifyBlock block;
    if (!ReadIdentifyBlock(drive, block)) {
      PutLine("drive ", drive, ": none");
      continue;
    }
    const DiskDriveRecord record = DecodeIdentifyBlock(drive, block);
    PutLine("drive ", drive, ": ", record.controller, "|", record.drive, "|", record.model, "|",
            record.serial_number, "|", record.revision, "|", record.type, "|", record.cylinders,
            "|", record.heads, "|", record.sectors_per_track);
  }
}

// --- Ports ---

// The debug console reads as its own number.
constexpr std::uint16_t kConsole = 0xE9;

struct Reached {
  bool byte;
  bool word;
  bool write;
};

Reached TryPorts() {
  constexpr std::uint16_t kUnused = 0x80;
  std::uint8_t byte = 0;
  std::uint16_t word = 0;
  return {ReadPortByte(kConsole, byte) && byte == kConsole, ReadPortWord(kConsole, word),
          WritePortByte(kUnused, 0)};
}

void ShowAttempts(std::string_view what) {
  const Reached reached = TryPorts();
  const TableState state = ExamineTable();
  PutLine(what, ": byte ", YesOrNo(reached.byte), ", word ", YesOrNo(reached.word), ", write ",
          YesOrNo(reached.write), "; table written ", YesOrNo(state.was_written), ", as before ",
          YesOrNo(state.is_as_before));
}

void ShowWithoutGate() {
  PutLine("plain read: fault ", TryReadPort(0x1F7));
  PutLine("plain write: fault ", TryWritePort(0x1F6));
}

void ShowTables() {
  struct Row {
    std::string_view what;
    TableSetup setup;
    std::uint32_t version = kWindows98;
  };
  static constexpr Row kRows[] = {
      {"code elsewhere", {.flat_code = 0xFE8}},
      {"nt", {}, kWindowsNt},
      {"no free slot", {.is_full = true}},
      {"no flat code", {.flat_code = 0}},
      {"read-only table", {.access = Access::kReadOnly}},
      {"kernel's own table", {.access = Access::kKernelOnly}},
      {"table in the program's memory", {.lies_low = true}},
      {"half a table", {.limit = 0x1FFF}},
      {"invented address", {.told = Told::kNothing}},
      {"address of other memory", {.told = Told::kOtherMemory}},
      {"address of a copy", {.told = Told::kCopy}},
  };
  for (const Row& row : kRows) {
    windows_version = row.version;
    PrepareTable(row.setup);
    ShowAttempts(row.what);
  }
  windows_version = kWindows98;
}

// The kernel takes the slot between two transfers.
void ShowTakenSlot() {
  PrepareTable({});
  ShowAttempts("slot free");
  TakeLastSlot(true);
  ShowAttempts("slot taken");
  TakeLastSlot(false);
  ShowAttempts("slot free again");
}

// The kernel takes the slot after the first, the second, ... instruction of a transfer, until the
// transfer is over before that.
void ShowIntrusions() {
  std::uint32_t intrusions = 0;
  std::uint32_t refused = 0;
  bool is_well = true;
  for (std::uint32_t after = 1;; ++after) {
    std::uint8_t byte = 0;
    PrepareTable({});
    is_well &= TryPorts().byte;
    BeginSteps(after);
    const bool reached = ReadPortByte(kConsole, byte);
    const Steps steps = EndSteps();
    is_well &= steps.well && reached == (byte == kConsole);
    intrusions += steps.intruded;
    refused += !reached;
    if (steps.intruded) TakeLastSlot(false);
    is_well &= ExamineTable().is_as_before;
    if (steps.count < after) break;
  }
  PutLine("intrusions: ", intrusions, ", transfers refused ", refused, ", well ", YesOrNo(is_well));
}

// The kernel does not care what stands in the slot.
void ShowRobbery() {
  PrepareTable({});
  std::uint8_t byte = 0;
  BeginSteps(kOnceAGateStands);
  const bool reached = ReadPortByte(kConsole, byte);
  const Steps steps = EndSteps();
  TakeLastSlot(false);
  PutLine("robbery: intruded ", YesOrNo(steps.intruded), ", byte ", YesOrNo(reached), ", well ",
          YesOrNo(steps.well), ", as before ", YesOrNo(ExamineTable().is_as_before));
}

// One free slot, so that a program that does not get it gets none.
constexpr TableSetup kSmallTable = {.limit = 0xAF};

bool other_reached = false;
std::uint8_t other_byte = 0;

void TransferInSecondProgram() {
  other_reached = second_program::ReadPortByte(kConsole, other_byte);
  LeaveProcessor();
}

void TransferInSecondThread() {
  ReadPortByte(kConsole, other_byte);
  LeaveProcessor();
}

void EndTransfers() {
  EndPortTransfers();
  ForbidGates();
  LeaveProcessor();
}

// The other one comes after the first, the second, ... instruction of a transfer and gets its
// first, its first two, ... instructions. Then the transfer goes on.
void ShowTurns(std::string_view what, void (*other)(), bool up_to_claim) {
  std::uint32_t cases = 0;
  std::uint32_t refused = 0;
  bool is_well = true;
  Steps steps = {};
  for (std::uint32_t own = 1; own == 1 || steps.count >= own - 1; ++own) {
    for (std::uint32_t others = 1; others == 1 || steps.other_count >= others - 1; ++others) {
      std::uint8_t byte = other_byte = 0;
      other_reached = port_transfers_ended = false;
      PrepareTable(kSmallTable);
      is_well &= TryPorts().byte;
      BeginTurns({other, up_to_claim, own, others});
      const bool reached = ReadPortByte(kConsole, byte);
      steps = EndSteps();
      is_well &= steps.well && reached == (byte == kConsole) &&
                 other_reached == (other_byte == kConsole) && ExamineTable().is_as_before;
      ++cases;
      refused += !reached;
    }
  }
  PutLine(what, ": ", cases, ", transfers refused ", refused, ", well ", YesOrNo(is_well));
}

// A thread that is ended in the middle of a transfer is not waited for for ever.
void ShowEndWithoutThread() {
  port_transfers_ended = false;
  BeginTurns({TransferInSecondThread, true, 0, 0});
  KillOther();
  EndPortTransfers();
  EndSteps();
  PrepareTable({});
  ShowAttempts("after the end");
  port_transfers_ended = false;
}

}  // namespace

void RunProgram(const char* words) {
  ShowDrives();
  ShowAttempts("after the drives");
  if (std::string_view(words).ends_with("tables")) {
    ShowWithoutGate();
    ShowTakenSlot();
    ShowIntrusions();
    ShowRobbery();
    ShowTurns("second claimants", TransferInSecondProgram, true);
    ShowTurns("ends", EndTransfers, false);
    ShowEndWithoutThread();
    ShowTables();
  }
  PutLine("timer: ", YesOrNo(TimerRuns()));
  Exit(true);
}

}  // namespace emulated
