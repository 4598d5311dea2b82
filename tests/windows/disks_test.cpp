// The section DISK DRIVES in all seven releases: the drives beside what the test is told of them by
// the 16-bit functions, and a disk that it makes.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

constexpr char kScsiMap[] = "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3";
constexpr char kScsiUnit[] =
    "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3\\Scsi Bus 3\\Target Id 2\\Logical Unit Id 3";
const std::string kDiskClass = "{4D36E967-E325-11CE-BFC1-08002BE10318}";
const std::string kDiskId = "IDE\\DISKTEST\\5&0";
constexpr char kClasses[] = "System\\CurrentControlSet\\Control\\Class\\";
constexpr char kNtDevices[] = "System\\CurrentControlSet\\Enum\\";
constexpr char kOldDevices[] = "Enum\\";

// In the SCSI map, which NT reads, and among the devices, where Windows 95/98/Me has its own keys.
struct SeededDisk {
  SeededDisk() {
    // The system makes the map anew at each start, and takes no lasting key into it.
    HKEY unit = nullptr;
    EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kScsiUnit, 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &unit, nullptr),
              ERROR_SUCCESS);
    RegSetKeyValueA(unit, nullptr, "Type", REG_SZ, "DISKPERIPHERAL", 15);
    RegSetKeyValueA(unit, nullptr, "Identifier", REG_SZ, "SCSI DISK  0001", 16);
    RegCloseKey(unit);
    PutTexts(kClasses + kDiskClass, {{"Class", "DiskDrive"}});
    PutTexts(kNtDevices + kDiskId, {{"ClassGUID", kDiskClass}, {"DeviceDesc", "not this"}});
    PutTexts(kOldDevices + kDiskId, {{"DeviceDesc", "A disk"}});
  }
  ~SeededDisk() {
    for (const std::string& key : {std::string(kScsiMap), kClasses + kDiskClass,
                                   kNtDevices + kDiskId, kOldDevices + kDiskId})
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
  }
};

std::string Line(const std::string& label, const std::string& field, const std::string& value) {
  return Padded(label, 27) + Padded(field, 21) + ":  " + value;
}

struct LogicalDisk {
  char letter = 0;
  std::string type;
  std::string file_system;
  DWORD flags = 0;
  unsigned long long total = 0;
};

std::vector<LogicalDisk> LogicalDisks() {
  constexpr const char* kTypes[] = {"unknown", "no_root_dir", "removable", "fixed",
                                    "network", "CDROM",       "RAM disk"};
  std::vector<LogicalDisk> disks;
  for (wchar_t root[] = L"A:\\"; root[0] <= L'Z'; ++root[0]) {
    if ((GetLogicalDrives() >> (root[0] - L'A') & 1) == 0) continue;
    LogicalDisk& disk = disks.emplace_back();
    disk.letter = static_cast<char>(root[0]);
    const UINT type = GetDriveTypeW(root);
    disk.type = kTypes[type];
    wchar_t name[256] = {};
    ULARGE_INTEGER available, total, free;
    if (type == DRIVE_REMOVABLE) continue;
    if (GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &disk.flags, name, 256))
      disk.file_system = Narrow(name);
    if (GetDiskFreeSpaceExW(root, &available, &total, &free)) disk.total = total.QuadPart;
  }
  return disks;
}

// The number at the end of a line that begins as it should; it changes while other programs write.
unsigned long long FreeSpace(const std::string& line, const std::string& field) {
  const std::string start = Line("", field, "");
  EXPECT_TRUE(line.starts_with(start) && line.ends_with(" b")) << line;
  return line.size() < start.size() ? 0 : std::strtoull(&line[start.size()], nullptr, 10);
}

// The lines below the banner.
std::vector<std::string> Items(const std::string& keys, std::vector<std::string>& list) {
  const Folder folder;
  const std::string report = ReportOf(folder, "[DISK DRIVE]\r\n" + keys, {}, &list);
  const size_t rule = report.rfind("=\r\n\r\n");
  return ReportLines(rule == std::string::npos ? report : report.substr(rule + 5));
}

class DisksOnEveryRelease : public EveryRelease {};

TEST_P(DisksOnEveryRelease, DriveLettersAreAsOtherCodeFindsThem) {
  const std::vector<LogicalDisk> disks = LogicalDisks();
  ASSERT_FALSE(disks.empty());
  std::vector<std::string> list;
  std::vector<std::string> lines = Items(
      "TotalSpace=1\r\nFreeSpace=1\r\nAvailableFreeSpace=1\r\nFileSystemType=1\r\n"
      "FileSystemFlags=1\r\n",
      list);
  EXPECT_EQ(list.front(), ProgressLine("Logical disks...", "Ok"));
  std::vector<std::string> expected;
  std::string label = "Logical disks (total " + std::to_string(disks.size()) + ")";
  for (const LogicalDisk& disk : disks) {
    expected.push_back(Line(label, "Letter", {disk.letter}));
    expected.push_back(Line("", "Disk type", disk.type));
    label.clear();
    if (disk.letter > 'B') {
      char flags[16];
      std::snprintf(flags, sizeof flags, "0x%08lX", disk.flags);
      expected.push_back(Line("", "File system name", disk.file_system));
      expected.push_back(Line("", "File system flags", flags));
      expected.push_back(Line("", "Total space", std::to_string(disk.total) + " b"));
      for (const char* const field : {"Total free space", "Available free space"}) {
        ASSERT_LT(expected.size(), lines.size());
        std::string& line = lines[expected.size()];
        EXPECT_LE(FreeSpace(line, field), disk.total) << line;
        EXPECT_EQ(FreeSpace(line, field) == 0, disk.total == 0) << line;
        expected.push_back(line);
      }
    }
    expected.emplace_back();
  }
  EXPECT_EQ(lines, expected);
}

TEST_P(DisksOnEveryRelease, DisksOfTheRegistryWhereNoDriverTellsMore) {
  const SeededDisk disk;
  std::vector<std::string> list;
  const std::vector<std::string> lines = Items("DiskDrives=1\r\n", list);
  EXPECT_EQ(list.front(), ProgressLine("Disk drives...", "Ok"));
  ASSERT_FALSE(lines.empty());
  EXPECT_TRUE(lines[0].starts_with("HDD (total ")) << lines[0];
  const std::string model = Line("", "Model", GetParam().has_tokens ? "SCSI DISK  0001" : "A disk");
  bool found = false;
  for (const std::string& line : lines) {
    found |= line.size() > 27 && line.substr(27) == model.substr(27);
    EXPECT_EQ(line.find("not this"), std::string::npos);
  }
  EXPECT_TRUE(found) << Joined(lines);
}

INSTANTIATE_TEST_SUITE_P(Disks, DisksOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
