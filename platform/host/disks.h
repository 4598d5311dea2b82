// The machine's physical disks and its drive letters.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/host/windows_types.h"

namespace host {

struct Machine;

// An IDE drive, as it describes itself. The texts are at most as long as their places in the
// identify block: 40, 20 and 8 characters; what is shorter is filled up with blanks.
struct IdeDrive {
  bool takes_packets = false;  // as CD drives do, which don't answer the command for disks
  WORD configuration = 0;      // 0x80: removable, 0x40: fixed
  WORD cylinders = 0;
  WORD heads = 0;
  WORD sectors_per_track = 0;
  std::string model;
  std::string serial_number;
  std::string revision;
};

using IdeBlock = std::array<WORD, 256>;
IdeBlock IdentifyBlockOf(const IdeDrive& drive);

// One of the places for a pair of drives, master and slave. Its controller is there when it or a
// drive is stated.
struct IdeChannel {
  bool stated = false;
  bool busy = false;  // stuck: it never becomes ready
  std::array<std::optional<IdeDrive>, 2> drives;

  bool IsThere() const { return stated || busy || drives[0] || drives[1]; }

  // What its registers are at.
  std::optional<unsigned> selected;  // none: as the system has left it, the first drive there is
  bool refused = false;              // the last command
  std::optional<std::size_t> next_word;  // of a block that is being read
};

// A kind of floppy drive.
struct FloppyKind {
  std::string_view name;  // "1.44 MB"
  BYTE dos_device_type;
  std::span<const DWORD> media_types;  // of NT, in the order of its driver
};
const FloppyKind* FindFloppyKind(std::string_view name);

// What is in a drive.
struct Volume {
  std::string file_system;
  DWORD flags = 0;
  DWORD sectors_per_cluster = 0;
  DWORD bytes_per_sector = 0;
  // In clusters.
  std::uint64_t total = 0;
  std::uint64_t free = 0;
  std::uint64_t available = 0;  // to the user
};

struct Drive {
  UINT type = 3;  // as GetDriveTypeA answers
  const FloppyKind* floppy = nullptr;
  std::optional<Volume> volume = std::nullopt;  // none: the drive isn't ready
};

struct Disks {
  // Of the drives 0 and 1, 2 and 3, 4 and 5, 6 and 7.
  std::array<IdeChannel, 4> channels;
  // On NT they never can be.
  bool ports_reachable = true;
  // The disks of NT that can be opened, and which IDE drive they are; none: SCSI or the like.
  std::map<unsigned, std::optional<unsigned>> physical_drives;
  std::map<char, Drive> letters;
};

// The letters that there are: the stated ones and those of folders.
std::map<char, Drive> DriveLetters(const Machine& machine);

}  // namespace host
