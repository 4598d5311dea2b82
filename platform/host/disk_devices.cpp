// The devices of disks and drive letters on NT.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "platform/disk_control.h"
#include "platform/host/code_page.h"
#include "platform/host/devices.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

using hostscope::DiskGeometry;
using hostscope::IdentifyAnswer;
using hostscope::IdentifyRequest;
using hostscope::SmartVersion;

template <typename Record>
DWORD Give(const Record& record, std::size_t size, std::span<BYTE> out, DWORD& returned) {
  if (out.size() < size) return ERROR_INSUFFICIENT_BUFFER;
  std::memcpy(out.data(), &record, size);
  returned = static_cast<DWORD>(size);
  return ERROR_SUCCESS;
}

// "\\.\PhysicalDrive0".
class PhysicalDrive : public Device {
 public:
  // The place is that of the drive on its controllers.
  PhysicalDrive(unsigned number, unsigned place, std::optional<IdeDrive> drive)
      : number_(number), place_(place), drive_(std::move(drive)) {}

  DWORD Control(DWORD code, std::span<const BYTE> in, std::span<BYTE> out,
                DWORD& returned) override {
    // The driver of another disk than one of IDE does not know these.
    if (!drive_) return ERROR_INVALID_FUNCTION;
    if (code == hostscope::kSmartGetVersion) return GiveVersion(out, returned);
    if (code == hostscope::kSmartReceiveDriveData) return Identify(in, out, returned);
    return ERROR_INVALID_FUNCTION;
  }

 private:
  DWORD GiveVersion(std::span<BYTE> out, DWORD& returned) const {
    // The map has room for the drives of two controllers, and a second time for those with packets.
    const unsigned bit = place_ % 4 + (drive_->takes_packets ? 4 : 0);
    const SmartVersion version = {
        .version = 1, .revision = 1, .device_map = static_cast<BYTE>(1U << bit), .capabilities = 7};
    return Give(version, sizeof version, out, returned);
  }

  DWORD Identify(std::span<const BYTE> in, std::span<BYTE> out, DWORD& returned) const {
    IdentifyRequest request = {};
    if (in.size() < sizeof request) return ERROR_INVALID_PARAMETER;
    std::memcpy(&request, in.data(), sizeof request);
    const BYTE command =
        drive_->takes_packets ? hostscope::kIdentifyPacketDevice : hostscope::kIdentifyDevice;
    const bool asks_slave = (request.drive_head & hostscope::kSlaveBit) != 0;
    const std::array registers = {request.features,      request.sector_count,
                                  request.sector_number, request.cylinder_low,
                                  request.cylinder_high, request.reserved};
    if (registers != std::array<BYTE, 6>{0, 1, 1, 0, 0, 0} || request.drive_number != number_ ||
        asks_slave != (number_ % 2 != 0) || request.buffer_size != hostscope::kIdentifyBlockSize) {
      return ERROR_INVALID_PARAMETER;
    }
    if (request.command != command) return ERROR_IO_DEVICE;
    IdentifyAnswer answer = {};
    const IdeBlock block = IdentifyBlockOf(*drive_);
    answer.size = hostscope::kIdentifyBlockSize;
    std::memcpy(answer.block, block.data(), sizeof answer.block);
    return Give(answer, sizeof answer - sizeof answer.further, out, returned);
  }

  unsigned number_;
  unsigned place_;
  std::optional<IdeDrive> drive_;
};

// "\\.\A:". Of a medium nothing is told but its type.
class DriveDevice : public Device {
 public:
  explicit DriveDevice(const Drive& drive) : drive_(drive) {}

  DWORD Control(DWORD code, std::span<const BYTE>, std::span<BYTE> out, DWORD& returned) override {
    constexpr DWORD kRemovableMedia[] = {11};
    constexpr DWORD kFixedMedia[] = {12};
    if (code != hostscope::kStorageGetMediaTypes) return ERROR_INVALID_FUNCTION;
    std::span<const DWORD> types = drive_.type == DRIVE_FIXED ? kFixedMedia : kRemovableMedia;
    if (drive_.floppy != nullptr) types = drive_.floppy->media_types;
    const std::size_t room = out.size() / sizeof(DiskGeometry);
    if (room == 0) return ERROR_INSUFFICIENT_BUFFER;
    for (std::size_t i = 0; i < std::min(room, types.size()); ++i) {
      const DiskGeometry geometry = {.media_type = types[i]};
      std::memcpy(&out[i * sizeof geometry], &geometry, sizeof geometry);
    }
    returned = static_cast<DWORD>(std::min(room, types.size()) * sizeof(DiskGeometry));
    return types.size() > room ? ERROR_MORE_DATA : ERROR_SUCCESS;
  }

 private:
  Drive drive_;
};

std::optional<unsigned> NumberBehind(std::string_view prefix, std::string_view name) {
  if (!EqualNoCase(name.substr(0, prefix.size()), prefix)) return std::nullopt;
  unsigned number = 0;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + prefix.size(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::shared_ptr<Device> OpenPhysicalDrive(Machine& machine, std::string_view name) {
  const std::optional<unsigned> number = NumberBehind("PhysicalDrive", name);
  if (!machine.IsNt() || !number) return nullptr;
  const Disks& disks = machine.disks;
  const auto found = disks.physical_drives.find(*number);
  if (found == disks.physical_drives.end()) return nullptr;
  const unsigned place = found->second.value_or(0);
  return std::make_shared<PhysicalDrive>(
      *number, place, found->second ? disks.channels[place / 2].drives[place % 2] : std::nullopt);
}

std::shared_ptr<Device> OpenDriveLetter(Machine& machine, std::string_view name) {
  if (!machine.IsNt() || name.size() != 2 || name[1] != ':') return nullptr;
  const std::map<char, Drive> letters = DriveLetters(machine);
  const auto found = letters.find(static_cast<char>(name[0] & ~0x20));
  if (found == letters.end() || found->second.type == DRIVE_REMOTE) return nullptr;
  return std::make_shared<DriveDevice>(found->second);
}

}  // namespace host
