// The section DISK DRIVES in all seven releases: the drives beside what the test is told of them by
// the 16-bit functions, and a disk that it makes.

#include <gtest/gtest.h>

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
    keys.Put(kClasses + kDiskClass, {{"Class", "DiskDrive"}});
    keys.Put(kNtDevices + kDiskId, {{"ClassGUID", kDiskClass}, {"DeviceDesc", "not this"}});
    keys.Put(kOldDevices + kDiskId, {{"DeviceDesc", "A disk"}});
  }
  ~SeededDisk() { RegDeleteTreeA(HKEY_LOCAL_MACHINE, kScsiMap); }
  SeededKeys keys;
};

std::string Line(const std::string& label, const std::string& field, const std::string& value) {
  return Padded(label, 27) + Padded(field, 21) + ":  " + value;
}

constexpr char kFree[] = "Total free space", kAvailable[] = "Available free space";

// What the report says of the drives, without the numbers of the free space, which changes; the
// largest that those can be are appended to the second list.
std::vector<std::string> LogicalDiskLines(std::vector<std::uint64_t>& totals) {
  constexpr const char* kTypes[] = {"unknown", "no_root_dir", "removable", "fixed",
                                    "network", "CDROM",       "RAM disk"};
  std::vector<std::string> lines;
  int count = 0;
  for (wchar_t root[] = L"A:\\"; root[0] <= L'Z'; ++root[0]) {
    if ((GetLogicalDrives() >> (root[0] - L'A') & 1) == 0) continue;
    ++count;
    wchar_t name[256] = {};
    DWORD flags = 0;
    ULARGE_INTEGER available, total = {}, free;
    const UINT type = GetDriveTypeW(root);
    if (type != DRIVE_REMOVABLE) {
      GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, name, 256);
      GetDiskFreeSpaceExW(root, &available, &total, &free);
    }
    lines.push_back(Line("", "Letter", {static_cast<char>(root[0])}));
    lines.push_back(Line("", "Disk type", kTypes[type]));
    if (root[0] > L'B') {
      char number[16];
      std::snprintf(number, sizeof number, "0x%08lX", flags);
      lines.insert(lines.end(), {Line("", "File system name", Narrow(name)),
                                 Line("", "File system flags", number),
                                 Line("", "Total space", std::to_string(total.QuadPart) + " b"),
                                 Line("", kFree, ""), Line("", kAvailable, "")});
      totals.push_back(total.QuadPart);
    }
    lines.emplace_back();
  }
  lines[0].replace(0, 27, Padded("Logical disks (total " + std::to_string(count) + ")", 27));
  return lines;
}

// Takes the numbers of a field out of its lines.
std::vector<std::uint64_t> CutNumbers(std::vector<std::string>& lines, const char* field) {
  std::vector<std::uint64_t> numbers;
  const std::string start = Line("", field, "");
  for (std::string& line : lines) {
    if (!line.starts_with(start)) continue;
    EXPECT_TRUE(line.ends_with(" b")) << line;
    numbers.push_back(std::strtoull(line.c_str() + start.size(), nullptr, 10));
    line = start;
  }
  return numbers;
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
  std::vector<std::string> list;
  std::vector<std::string> lines = Items(
      "TotalSpace=1\r\nFreeSpace=1\r\nAvailableFreeSpace=1\r\nFileSystemType=1\r\n"
      "FileSystemFlags=1\r\n",
      list);
  const std::vector<std::uint64_t> free = CutNumbers(lines, kFree);
  const std::vector<std::uint64_t> available = CutNumbers(lines, kAvailable);
  std::vector<std::uint64_t> totals;
  EXPECT_EQ(lines, LogicalDiskLines(totals));
  ASSERT_TRUE(free.size() == totals.size() && available.size() == totals.size());
  for (size_t i = 0; i < totals.size(); ++i) {
    EXPECT_LE(free[i], totals[i]) << i;
    EXPECT_LE(available[i], free[i]) << i;
  }
  // C: is the first one that tells of space.
  EXPECT_TRUE(available[0] != 0 && free[0] < totals[0]);
  EXPECT_EQ(list.front(), ProgressLine("Logical disks...", "Ok"));
}

TEST_P(DisksOnEveryRelease, DisksOfTheRegistryWhereNoDriverTellsMore) {
  const SeededDisk disk;
  std::vector<std::string> list;
  const std::vector<std::string> lines = Items("DiskDrives=1\r\n", list);
  EXPECT_EQ(list.front(), ProgressLine("Disk drives...", "Ok"));
  const std::string model = GetParam().has_tokens ? "SCSI DISK  0001" : "A disk";
  EXPECT_EQ(lines, std::vector<std::string>({Line("HDD (total 1)", "Model", model), ""}));
}

INSTANTIATE_TEST_SUITE_P(Disks, DisksOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
