// The keys of machine.ini about disks.
#include <algorithm>
#include <cctype>

#include "platform/host/fact.h"
#include "platform/host/kernel32.h"

namespace host {
namespace {

using std::string_view;

constexpr string_view kControllers[] = {"Primary", "Secondary", "Tertiary", "Quaternary"};

template <unsigned number>
std::string ReadController(Machine& machine, string_view, string_view value) {
  IdeChannel& channel = machine.disks.channels[number];
  channel.stated = value == "present";
  channel.busy = value == "busy";
  return channel.stated || channel.busy ? "" : "the value is neither \"present\" nor \"busy\"";
}

// "Primary master" and the like.
std::optional<unsigned> DrivePlace(string_view text) {
  const string_view controller = TakeItem(text, ' ');
  const auto found = std::find(std::begin(kControllers), std::end(kControllers), controller);
  if (found == std::end(kControllers) || (text != "master" && text != "slave")) return std::nullopt;
  return static_cast<unsigned>((found - kControllers) * 2 + (text == "slave" ? 1 : 0));
}

struct DriveKind {
  string_view name;
  WORD configuration;
  bool takes_packets;
};
constexpr DriveKind kDriveKinds[] = {{"fixed", 0x0040, false},
                                     {"removable", 0x0080, false},
                                     {"unknown", 0x0000, false},
                                     {"packet", 0x8580, true}};

bool TakeDriveKind(string_view& value, IdeDrive& drive) {
  const string_view name = TakeItem(value, ' ');
  for (const DriveKind& kind : kDriveKinds) {
    if (kind.name != name) continue;
    drive.configuration = kind.configuration;
    drive.takes_packets = kind.takes_packets;
    return true;
  }
  return false;
}

// "16383/16/63".
bool TakeGeometry(string_view& value, IdeDrive& drive) {
  string_view text = TakeItem(value, ' ');
  const std::optional<WORD> cylinders = TakeNumber(text, '/');
  const std::optional<WORD> heads = cylinders ? TakeNumber(text, '/') : std::nullopt;
  const std::optional<WORD> sectors = heads ? TakeNumber(text, '\0') : std::nullopt;
  if (!sectors) return false;
  drive.cylinders = *cylinders;
  drive.heads = *heads;
  drive.sectors_per_track = *sectors;
  return true;
}

// A text between double quotes, none of which is in it.
bool TakeQuoted(string_view& value, std::size_t most, std::string& text) {
  value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
  const std::size_t end = value.find('"', 1);
  if (!value.starts_with('"') || end == string_view::npos || end - 1 > most) return false;
  text = value.substr(1, end - 1);
  value.remove_prefix(end + 1);
  return true;
}

std::string ReadIdeDrive(Machine& machine, string_view key, string_view value) {
  const std::optional<unsigned> place = DrivePlace(key);
  if (!place) return "the key is no drive (\"Primary master\")";
  IdeDrive drive;
  if (!TakeDriveKind(value, drive))
    return "the value begins with none of \"fixed\", \"removable\", \"unknown\" and \"packet\"";
  if (!drive.takes_packets && !TakeGeometry(value, drive))
    return "behind the kind there are no numbers of cylinders, heads and sectors (16383/16/63)";
  if (!TakeQuoted(value, 40, drive.model) || !TakeQuoted(value, 20, drive.serial_number) ||
      !TakeQuoted(value, 8, drive.revision) || !value.empty()) {
    return "the value does not end with model, serial number and revision, each between double "
           "quotes, of at most 40, 20 and 8 characters";
  }
  machine.disks.channels[*place / 2].drives[*place % 2] = std::move(drive);
  return "";
}

std::string ReadPhysicalDrive(Machine& machine, string_view key, string_view value) {
  const std::optional<std::uint64_t> number = Number(key, 0xFF);
  if (!number) return "the key is no number of a drive";
  const std::optional<unsigned> place = DrivePlace(value);
  if (!place && value != "other")
    return "the value is neither an IDE drive (\"Primary master\") nor \"other\"";
  const auto drive = static_cast<unsigned>(*number);
  const bool is_new = machine.disks.physical_drives.emplace(drive, place).second;
  return is_new ? "" : "the drive's number stands twice";
}

struct DriveType {
  string_view name;
  UINT type;
};
constexpr DriveType kDriveTypes[] = {
    {"unknown", DRIVE_UNKNOWN},  {"no root", DRIVE_NO_ROOT_DIR}, {"removable", DRIVE_REMOVABLE},
    {"fixed", DRIVE_FIXED},      {"network", DRIVE_REMOTE},      {"CDROM", DRIVE_CDROM},
    {"RAM disk", DRIVE_RAMDISK},
};

bool ReadType(string_view text, Drive& drive) {
  if (text.starts_with("floppy ")) {
    drive.type = DRIVE_REMOVABLE;
    drive.floppy = FindFloppyKind(text.substr(7));
    return drive.floppy != nullptr;
  }
  const auto found = std::find_if(std::begin(kDriveTypes), std::end(kDriveTypes),
                                  [text](const DriveType& row) { return row.name == text; });
  if (found == std::end(kDriveTypes)) return false;
  drive.type = found->type;
  return true;
}

// "FAT32, 0x6, 8/512, 1597342/432100", or with the clusters that the user may fill behind them.
std::optional<Volume> ParseVolume(string_view value) {
  Volume volume;
  volume.file_system = TakeItem(value, ',');
  const std::optional<std::uint64_t> flags = Number(TakeItem(value, ','));
  string_view cluster = TakeItem(value, ',');
  const std::optional<std::uint64_t> sectors = Number(TakeItem(cluster, '/'));
  const std::optional<std::uint64_t> bytes = Number(cluster);
  const std::optional<std::uint64_t> total = Number(TakeItem(value, '/'));
  const std::optional<std::uint64_t> free = Number(TakeItem(value, '/'));
  const std::optional<std::uint64_t> available = value.empty() ? free : Number(value);
  if (!flags || !sectors || !bytes || !total || !free || !available) return std::nullopt;
  volume.flags = static_cast<DWORD>(*flags);
  volume.sectors_per_cluster = static_cast<DWORD>(*sectors);
  volume.bytes_per_sector = static_cast<DWORD>(*bytes);
  volume.total = *total;
  volume.free = *free;
  volume.available = *available;
  return volume;
}

std::string ReadDrive(Machine& machine, string_view key, string_view value) {
  if (key.size() != 1 || key[0] < 'A' || key[0] > 'Z') return "the key is no letter from A to Z";
  Drive drive;
  if (!ReadType(TakeItem(value, ','), drive)) return "there is no such type of drive";
  if (!value.empty()) {
    drive.volume = ParseVolume(value);
    if (!drive.volume)
      return "behind the type there are no file system, flags, size of a cluster and numbers of "
             "clusters (\"FAT32, 0x6, 8/512, 1597342/432100\")";
  }
  machine.disks.letters[key[0]] = std::move(drive);
  return "";
}

constexpr Fact kDiskFacts[] = {
    {"Ports", "Reachable", Read<&Machine::disks, &Disks::ports_reachable>},
    {"IdeControllers", "Primary", ReadController<0>},
    {"IdeControllers", "Secondary", ReadController<1>},
    {"IdeControllers", "Tertiary", ReadController<2>},
    {"IdeControllers", "Quaternary", ReadController<3>},
    {"IdeDrives", "*", ReadIdeDrive},
    {"PhysicalDrives", "*", ReadPhysicalDrive},
    {"Drives", "*", ReadDrive},
};

}  // namespace

std::span<const Fact> DiskFacts() {
  return kDiskFacts;
}

}  // namespace host
