// Drive letters with their types, file systems and sizes, and the formats of floppy drives.

#include "probes/devices/logical_disks.h"

#include <gtest/gtest.h>

#include "probes/devices/floppy_format.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Drive;
using test::ReportRun;

constexpr host::WindowsVersion kWindows95 = {
    .major = 4, .minor = 0, .build = 0x040003B6, .platform_id = 1};
constexpr host::WindowsVersion kWindows98 = {
    .major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};

Drive FloppyDrive(const char* kind) {
  return {.type = DRIVE_REMOVABLE, .floppy = host::FindFloppyKind(kind)};
}

// A disk of 40 GB, a part of which is kept from the user.
const host::Volume kVolume = {.file_system = "FAT32",
                              .flags = 0xABC,
                              .sectors_per_cluster = 64,
                              .bytes_per_sector = 512,
                              .total = 1221000,
                              .free = 1000,
                              .available = 10};

// The records, their fields with blanks between them.
std::string Disks(host::Machine& machine) {
  const host::UseMachine use(machine);
  const ProbeContext context;
  RecordArray disks;
  disks.Create(sizeof(LogicalDiskRecord));
  if (!ListLogicalDisks(context, disks)) return "failed";
  std::string text;
  for (int i = 0; i < disks.count(); ++i) {
    const auto& disk = *disks.GetAs<LogicalDiskRecord>(i);
    text += disk.letter + std::string(" ") + disk.disk_type + " " + disk.file_system_name;
    for (const std::uint64_t number :
         {std::uint64_t{disk.file_system_flags}, disk.total, disk.total_free, disk.available_free})
      text += " " + std::to_string(number);
    text += "|";
  }
  EXPECT_FALSE(machine.handles.OpenObjects().contains("device"));
  return text;
}

TEST(LogicalDisks, Types) {
  const char* const texts[] = {"unknown", "no_root_dir", "removable", "fixed",
                               "network", "CDROM",       "RAM disk",  "unknown"};
  for (unsigned type = 0; type < std::size(texts); ++type)
    EXPECT_STREQ(DriveTypeText(type), texts[type]) << type;
}

TEST(LogicalDisks, FloppyFormatsByTheirNumbers) {
  // l: 5.25 inches, s: 3.5 inches.
  const std::string media =
                        "-lssss"
                        "lllll---",
                    devices = "llslls-ss--";
  const auto text = [](char sign) { return sign == 'l' ? "5.25\"" : sign == 's' ? "3.5\"" : ""; };
  for (std::uint32_t i = 0; i < media.size(); ++i)
    EXPECT_STREQ(FormatOfMediaType(i), text(media[i])) << "media type " << i;
  for (std::uint8_t i = 0; i < devices.size(); ++i)
    EXPECT_STREQ(FormatOfDeviceType(i), text(devices[i])) << "device type " << int{i};
  EXPECT_STREQ(FormatOfDeviceType(0xFF), "");
}

TEST(LogicalDisks, DrivesForRemovableMedia) {
  const struct {
    const char* kind;  // of a floppy drive; null: another drive
    const char* on_nt;
    const char* on_98;
  } rows[] = {
      {"1.44 MB", "floppy, 3.5\"", "floppy, 3.5\""},
      {"1.2 MB", "floppy, 5.25\"", "floppy, 5.25\""},
      {"2.88 MB", "floppy, 3.5\"", "removable"},
      {nullptr, "removable", "floppy, 3.5\""},
  };
  for (const bool is_nt : {true, false}) {
    for (const auto& row : rows) {
      host::Machine machine;
      if (!is_nt) machine.version = kWindows98;
      Drive& drive = machine.disks.letters['Z'];
      drive.type = DRIVE_REMOVABLE;
      if (row.kind != nullptr) drive = FloppyDrive(row.kind);
      drive.volume = kVolume;
      EXPECT_EQ(Disks(machine), std::string("Z ") + (is_nt ? row.on_nt : row.on_98) + "  0 0 0 0|")
          << is_nt << (row.kind == nullptr ? " none" : row.kind);
    }
  }
}

// The carry flag of DOS, which is there before the call and stays when DOS refuses.
TEST(LogicalDisks, ADriveThatDosDoesNotKnow) {
  host::Machine machine;
  machine.version = kWindows98;
  machine.disks.letters['A'] = FloppyDrive("1.44 MB");
  machine.faults.AtCall("CreateFileA", [&machine] { machine.disks.letters.clear(); });
  EXPECT_EQ(Disks(machine), "A removable  0 0 0 0|");
}

TEST(LogicalDisks, SizesAndFileSystems) {
  const std::string wide = " 40009728000 32768000 327680|";
  const std::string narrow = " 40009728000 327680 327680|";
  const struct {
    const char* what;
    host::WindowsVersion version;
    const char* fails;
    std::string expected;
  } rows[] = {
      {"all told", kWindows98, "", "C fixed FAT32 2748" + wide},
      {"before the larger question", kWindows95, "", "C fixed FAT32 2748" + narrow},
      {"the smaller question refused", kWindows95, "GetDiskFreeSpaceA",
       "C fixed FAT32 2748 0 0 0|"},
  };
  for (const auto& row : rows) {
    host::Machine machine;
    machine.version = row.version;
    machine.disks.letters['C'] = {.volume = kVolume};
    machine.error_mode = SEM_NOOPENFILEERRORBOX;
    std::vector<UINT> modes;
    for (const char* const asks :
         {"GetDiskFreeSpaceA", "GetDiskFreeSpaceExA", "GetVolumeInformationA", "GetDriveTypeA"})
      machine.faults.AtCall(asks, [&] { modes.push_back(machine.error_mode); });
    if (*row.fails != 0) machine.faults.FailAlways(row.fails, ERROR_NOT_READY);
    EXPECT_EQ(Disks(machine), row.expected) << row.what;
    // Prompts are put off for the space alone.
    EXPECT_EQ(modes, (std::vector<UINT>{SEM_NOOPENFILEERRORBOX, SEM_FAILCRITICALERRORS,
                                        SEM_NOOPENFILEERRORBOX}))
        << row.what;
  }
}

// The bytes of a cluster are counted in 32 bits, what they are multiplied with is not.
TEST(LogicalDisks, TheSmallerQuestionIsReckonedAsItAlwaysWas) {
  host::Machine machine;
  machine.version = kWindows95;
  Drive& drive = machine.disks.letters['C'];
  drive.volume = kVolume;
  drive.volume->sectors_per_cluster = 0x10000;
  drive.volume->bytes_per_sector = 0x18000;
  drive.volume->total = 0xFFFFFFFF;
  EXPECT_EQ(Disks(machine), "C fixed FAT32 2748 9223372034707292160 21474836480 21474836480|");
}

TEST(LogicalDisks, AListThatGrowsIsAskedForAgain) {
  host::Machine machine;
  char letter = 'C';
  machine.faults.AtCall("GetLogicalDriveStringsA", [&] {
    if (letter <= 'E') machine.disks.letters[letter++].type = DRIVE_NO_ROOT_DIR;
  });
  EXPECT_EQ(Disks(machine),
            "C no_root_dir  0 0 0 0|D no_root_dir  0 0 0 0|E no_root_dir  0 0 0 0|");
}

TEST(LogicalDisks, InTheReport) {
  const auto line = [](const std::string& label, const std::string& field,
                       const std::string& value) {
    return label + std::string(27 - label.size(), ' ') + field +
           std::string(21 - field.size(), ' ') + ":  " + value + "\r\n";
  };
  const struct {
    const char* key;
    std::string line;
  } rows[] = {
      {"FileSystemType", line("", "File system name", "FAT32")},
      {"FileSystemFlags", line("", "File system flags", "0x00000ABC")},
      {"TotalSpace", line("", "Total space", "40009728000 b")},
      {"FreeSpace", line("", "Total free space", "32768000 b")},
      {"AvailableFreeSpace", line("", "Available free space", "327680 b")},
      {"Label", ""},
  };
  ReportRun run;
  const auto expect = [&](const std::string& keys, const std::string& lines) {
    run.Run("[DISK DRIVE]\r\n" + keys);
    EXPECT_EQ(run.LastSection() + run.Progress().back(), lines) << keys;
  };
  const std::string progress = "Logical disks...         ";
  expect("Label=1\r\n", "Logical disks              \r\n" + progress + "Failed");
  run.machine().disks.letters = {
      {'A', FloppyDrive("1.44 MB")}, {'B', {.volume = kVolume}}, {'C', {.volume = kVolume}}};
  const std::string start = line("Logical disks (total 3)", "Letter", "A") +
                            line("", "Disk type", "floppy, 3.5\"") + "\r\n" +
                            line("", "Letter", "B") + line("", "Disk type", "fixed") + "\r\n" +
                            line("", "Letter", "C") + line("", "Disk type", "fixed");
  for (const auto& row : rows)
    expect(row.key + std::string("=1\r\n"), start + row.line + "\r\n" + progress + "Ok");
}

}  // namespace
}  // namespace hostscope
