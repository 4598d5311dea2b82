// What an IDE drive tells of itself: asking for its identify block through the ports of its
// controller, and reading the block. Calls nothing but platform/ports.h and the memory routines.
#pragma once

#include <array>
#include <cstdint>

namespace hostscope {

// Drives have numbers from 0 on: two, master and slave, on each of four controllers.
inline constexpr unsigned kIdeDrives = 8;

// As the drive sends it, in 16-bit words.
using IdentifyBlock = std::array<std::uint16_t, 256>;

struct DiskDriveRecord {
  char controller[256];
  char drive[256];
  char model[256];
  char serial_number[256];
  char revision[256];
  char type[256];
  std::uint32_t cylinders;
  std::uint32_t heads;
  std::uint32_t sectors_per_track;
};

// Asks the drive of that number by IDENTIFY DEVICE. False when ports can't be reached, when nothing
// answers after a bounded number of looks, and when the drive reports an error, as CD drives do.
bool ReadIdentifyBlock(unsigned drive, IdentifyBlock& block);

// The record of the drive of that number.
DiskDriveRecord DecodeIdentifyBlock(unsigned drive, const IdentifyBlock& block);

}  // namespace hostscope
