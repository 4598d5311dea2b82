// What the disk drivers are asked through DeviceIoControl: the codes, and the records that they
// take and give, byte by byte as on the 32-bit platform.
#pragma once

#include <cstdint>

namespace hostscope {

// The control interface of IDE drivers on NT.
inline constexpr std::uint32_t kSmartGetVersion = 0x74080;
inline constexpr std::uint32_t kSmartReceiveDriveData = 0x7C088;

struct SmartVersion {
  std::uint8_t version;
  std::uint8_t revision;
  std::uint8_t reserved;
  std::uint8_t device_map;  // a bit for each IDE device; four higher for one that takes packets
  std::uint32_t capabilities;
  std::uint32_t further[4];
};
static_assert(sizeof(SmartVersion) == 24);

inline constexpr std::uint32_t kIdentifyBlockSize = 512;

inline constexpr std::uint8_t kIdentifyDevice = 0xEC;
inline constexpr std::uint8_t kIdentifyPacketDevice = 0xA1;

// What selects a drive: master or slave, the two of each controller.
inline constexpr std::uint8_t kMasterDrive = 0xA0;
inline constexpr std::uint8_t kSlaveBit = 0x10;
constexpr std::uint8_t DriveHeadOf(unsigned drive) {
  return drive % 2 == 0 ? kMasterDrive : kMasterDrive | kSlaveBit;
}

struct [[gnu::packed]] IdentifyRequest {
  std::uint32_t buffer_size;
  std::uint8_t features;
  std::uint8_t sector_count;
  std::uint8_t sector_number;
  std::uint8_t cylinder_low;
  std::uint8_t cylinder_high;
  std::uint8_t drive_head;
  std::uint8_t command;
  std::uint8_t reserved;
  std::uint8_t drive_number;
  std::uint8_t further[22];
};
static_assert(sizeof(IdentifyRequest) == 35);

struct [[gnu::packed]] IdentifyAnswer {
  std::uint32_t size;
  std::uint8_t driver_status[12];
  std::uint8_t block[kIdentifyBlockSize];
  std::uint8_t further[3];
};
static_assert(sizeof(IdentifyAnswer) == 531);

// Of the drivers of NT: the media that a drive takes, one record for each.
inline constexpr std::uint32_t kStorageGetMediaTypes = 0x2D0C00;

struct DiskGeometry {
  std::uint64_t cylinders;
  std::uint32_t media_type;
  std::uint32_t tracks_per_cylinder;
  std::uint32_t sectors_per_track;
  std::uint32_t bytes_per_sector;
};
static_assert(sizeof(DiskGeometry) == 24);

}  // namespace hostscope
