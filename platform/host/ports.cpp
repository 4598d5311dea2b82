// The ports of the machine's IDE controllers.
#include "platform/ports.h"

#include "platform/disk_control.h"
#include "platform/host/machine.h"

using namespace host;

namespace {

constexpr std::uint16_t kBases[] = {0x1F0, 0x170, 0x1E8, 0x168};

// Of a channel, counted from its base.
constexpr unsigned kData = 0;
constexpr unsigned kDriveHead = 6;
constexpr unsigned kStatus = 7;
constexpr unsigned kCommand = 7;
constexpr unsigned kRegisters = 8;

constexpr std::uint8_t kBusy = 0x80;
constexpr std::uint8_t kReady = 0x50;  // with the seek done
constexpr std::uint8_t kHasData = 0x08;
constexpr std::uint8_t kFailed = 0x01;

struct Register {
  IdeChannel* channel = nullptr;
  unsigned number = 0;
};

// No channel where there is no controller.
Register RegisterAt(Disks& disks, std::uint16_t port) {
  for (std::size_t i = 0; i < std::size(kBases); ++i) {
    if (port < kBases[i] || port >= kBases[i] + kRegisters) continue;
    IdeChannel& channel = disks.channels[i];
    if (channel.IsThere()) return {&channel, static_cast<unsigned>(port - kBases[i])};
  }
  return {};
}

const std::optional<IdeDrive>& SelectedDrive(const IdeChannel& channel) {
  return channel.drives[channel.selected.value_or(channel.drives[0] ? 0 : 1)];
}

// A channel without a drive, and one that is asked for a drive that isn't there, show nothing.
std::uint8_t StatusOf(const IdeChannel& channel) {
  if (channel.busy) return kBusy;
  if (!SelectedDrive(channel)) return 0;
  if (channel.refused) return kReady | kFailed;
  return channel.next_word ? kReady | kHasData : kReady;
}

void Select(IdeChannel& channel, std::uint8_t drive_head) {
  channel.selected = (drive_head & hostscope::kSlaveBit) != 0 ? 1 : 0;
  channel.next_word.reset();
  channel.refused = false;
}

void Start(IdeChannel& channel, std::uint8_t command) {
  const std::optional<IdeDrive>& drive = SelectedDrive(channel);
  if (!drive) return;
  const std::uint8_t own_command =
      drive->takes_packets ? hostscope::kIdentifyPacketDevice : hostscope::kIdentifyDevice;
  channel.refused = command != own_command;
  channel.next_word.reset();
  if (!channel.refused) channel.next_word = 0;
}

WORD NextWord(IdeChannel& channel) {
  const std::optional<IdeDrive>& drive = SelectedDrive(channel);
  if (!drive || !channel.next_word) return 0xFFFF;
  const IdeBlock block = IdentifyBlockOf(*drive);
  const WORD word = block[(*channel.next_word)++];
  if (channel.next_word == block.size()) channel.next_word.reset();
  return word;
}

// The machine's disks; null where no port can be reached.
Disks* ReachableDisks() {
  Machine& machine = CurrentMachine();
  return machine.IsNt() || !machine.disks.ports_reachable ? nullptr : &machine.disks;
}

}  // namespace

namespace hostscope {

bool ReadPortByte(std::uint16_t port, std::uint8_t& value) {
  if (CallFails("ReadPortByte")) return false;
  Disks* const disks = ReachableDisks();
  if (disks == nullptr) return false;
  const Register here = RegisterAt(*disks, port);
  // Nobody drives the lines of a port where nothing is.
  value = 0xFF;
  if (here.channel != nullptr) value = here.number == kStatus ? StatusOf(*here.channel) : 0;
  return true;
}

bool ReadPortWord(std::uint16_t port, std::uint16_t& value) {
  if (CallFails("ReadPortWord")) return false;
  Disks* const disks = ReachableDisks();
  if (disks == nullptr) return false;
  const Register here = RegisterAt(*disks, port);
  value = here.channel != nullptr && here.number == kData ? NextWord(*here.channel) : 0xFFFF;
  return true;
}

bool WritePortByte(std::uint16_t port, std::uint8_t value) {
  if (CallFails("WritePortByte")) return false;
  Disks* const disks = ReachableDisks();
  if (disks == nullptr) return false;
  const Register here = RegisterAt(*disks, port);
  if (here.channel == nullptr || here.channel->busy) return true;
  if (here.number == kDriveHead) Select(*here.channel, value);
  if (here.number == kCommand) Start(*here.channel, value);
  return true;
}

void EndPortTransfers() {}

}  // namespace hostscope
