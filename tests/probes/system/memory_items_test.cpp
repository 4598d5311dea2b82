// BIOS, memory, page files and free resources on machines of both families, and with platform calls
// failing.

#include <gtest/gtest.h>

#include "probes/system/page_files.h"
#include "tests/support/system_values.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;
using test::SystemValues;

// A machine with a drive C: whose files the test writes below "C".
struct DiskRun : ReportRun {
  explicit DiskRun(bool is_nt) {
    folder().Write("C/WINDOWS/SYSTEM.INI", "");
    machine().files.MountDrive('C', folder().path() / "C");
    machine().windows_folder = "C:\\WINDOWS";
    if (!is_nt) machine().version = {.major = 4, .minor = 10, .platform_id = 1};
  }
  ~DiskRun() {
    for (const char* const kind : {"key", "device", "pages", "search"})
      EXPECT_FALSE(machine().handles.OpenObjects().contains(kind)) << kind;
  }
  void HoldFile(const char* name, std::uint64_t size) {
    folder().Write(std::string("C/") + name, "");
    machine().files.StateSize(std::string("C:\\") + name, size);
  }
};

TEST(BiosVersion, OfBothFamilies) {
  const std::string system = "HKLM\\HARDWARE\\DESCRIPTION\\System";
  const std::string root = "HKLM\\Enum\\Root\\";
  const std::string second = root + "*PNP0C01 with a long name";
  const auto describe_9x = [&](Machine& machine) {
    machine.registry.MakeKey(root + "EMPTY");
    machine.registry.SetValue(root + "FIRST", "BIOSVersion", REG_SZ, "too high up");
    machine.registry.SetValue(root + "FIRST\\0000", "BIOSDate", REG_SZ, "no version");
    machine.registry.SetValue(second + "\\0000", "BIOSVersion", REG_SZ, "1");
    machine.registry.SetValue(second + "\\0000", "BIOSDate", REG_SZ, "2");
    machine.registry.SetValue(root + "THIRD\\0000", "BIOSVersion", REG_SZ, "3");
  };
  const auto describe_nt = [&](const std::string& version, const char* date) {
    return [=](Machine& machine) {
      if (!version.empty())
        machine.registry.SetValue(system, "SystemBiosVersion", REG_MULTI_SZ, version);
      machine.registry.SetValue(system, "SystemBiosDate", REG_SZ, date);
    };
  };
  const struct {
    bool is_nt;
    std::function<void(Machine&)> describe;
    std::string value;
  } rows[] = {
      {true, describe_nt(std::string("V1\0V2\0\0", 7), "01/02/03"), "V1 (01/02/03)|"},
      {true, describe_nt(std::string(2000, 'x'), "01/02/03"), std::string(1023, 'x') + "|"},
      {true, describe_9x, "|Failed"},
      {false, describe_9x, "1 (2)|"},
      {false, describe_nt("V1", "01/02/03"), "|Failed"},
      {false,
       [&](Machine& machine) {
         describe_9x(machine);
         machine.registry.DenyAccess(second, ERROR_ACCESS_DENIED);
       },
       "3|"},
  };
  for (const auto& row : rows) {
    DiskRun run(row.is_nt);
    row.describe(run.machine());
    EXPECT_EQ(SystemValues(run, "BIOSVersion=1\r\n"), row.value) << &row - rows;
  }
}

TEST(Memory, WiderCallWhereThereIsIt) {
  constexpr std::uint64_t kGigabyte = 1024 * 1024 * 1024;
  const struct {
    DWORD platform, major;
    std::uint64_t total, available;
    const char* broken;
    const char* values;
  } rows[] = {
      {2, 5, 24 * kGigabyte, 6 * kGigabyte, "Sleep", "75%|total 24576 Mb, available 6144 Mb|"},
      {2, 5, 24 * kGigabyte, kGigabyte, "GlobalMemoryStatusEx",
       "95%|total 2047 Mb, available 1024 Mb|"},
      {2, 4, kGigabyte, kGigabyte / 2 - 1, "Sleep", "50%|total 1024 Mb, available 511 Mb|"},
      {1, 4, 0xFFFFFFFF, 0x000FFFFF, "Sleep", "99%|total 4095 Mb, available 0 Mb|"},
      {1, 4, 1, 1, "GlobalMemoryStatus", "0%|total 0 Mb, available 0 Mb|"},
  };
  for (const auto& row : rows) {
    DiskRun run(true);
    run.machine().version.platform_id = row.platform;
    run.machine().version.major = row.major;
    run.machine().hardware.memory = {row.total, row.available, std::nullopt};
    run.machine().faults.FailAlways(row.broken, ERROR_ACCESS_DENIED);
    EXPECT_EQ(SystemValues(run, "MemoryUsage=1\r\nPhysicalMemory=1\r\n"), row.values);
  }
}

TEST(PageFiles, OfNt) {
  const std::string deep = "C:\\" + std::string(300, 'd');
  const std::string key =
      "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";
  const std::pair<std::string, std::string> rows[] = {
      {std::string("C:\\PAGEFILE.SYS 384 768\0D:\\p 3 4\0\0", 33),
       "C:\\PAGEFILE.SYS, size 385 Mb, min 384 Mb, max 768 Mb|"},
      {"C:\\pagefile.sys 100 200 D:\\pagefile.sys 50 80",
       "C:\\pagefile.sys, size 385 Mb, min 100 Mb, max 200 Mb|"
       "D:\\pagefile.sys, size 0 Mb, min 50 Mb, max 80 Mb|"},
      {"a  b C:\\big.sys",
       "a, size 0 Mb, min  Mb, max b Mb|"
       "C:\\big.sys, size 5000 Mb, min  Mb, max  Mb|"},
      {"a 1 2 ", "a, size 0 Mb, min 1 Mb, max 2 Mb|"},
      {deep + " 123456789012345678901234567890 2",
       deep.substr(0, 259) + ", size 0 Mb, min 12345678901234567890 Mb, max 2 Mb|"},
      {std::string(1, '\0'), ""},
      {"", "|Failed"},  // no value
  };
  for (const auto& [list, values] : rows) {
    DiskRun run(true);
    run.HoldFile("pagefile.sys", (386ULL << 20) - 1);
    run.HoldFile("big.sys", 5000ULL << 20);
    if (!list.empty()) run.machine().registry.SetValue(key, "PagingFiles", REG_MULTI_SZ, list);
    EXPECT_EQ(SystemValues(run, "Pagefiles=1\r\n"), values) << list;
  }
  DiskRun run(true);
  run.machine().registry.SetValue(key, "PagingFiles", REG_MULTI_SZ, "a 1 2 b 3 4");
  ProbeContext context;
  EXPECT_TRUE(ReadPageFiles(context) && ReadPageFiles(context));
  EXPECT_EQ(context.page_files.count(), 2) << "each call fills the list anew";
  run.Run("[SYSTEM]\r\nPagefiles=1\r\n");
  EXPECT_NE(
      run.Report().find("\r\nPagefile space             a, size 0 Mb, min 1 Mb, max 2 Mb\r\n" +
                        std::string(27, ' ') + "b, size 0 Mb, min 3 Mb, max 4 Mb\r\n"),
      std::string::npos)
      << "the first line alone has the label";
}

TEST(PageFiles, OfWindows98) {
  const host::SwapFile swap_file = {"D:\\WIN386.SWP", (1ULL << 32) + 0x1FF};
  const std::string guess = "C:\\WINDOWS\\Win386.swp size 0 min ? max ?";
  const struct {
    std::optional<host::SwapFile> swap_file;
    const char* settings;  // of [386Enh]
    const char* broken;
    std::string expected;
  } rows[] = {
      {swap_file, "PagingDrive=C:\nMinPagingFileSize=131072\n", "Sleep",
       "D:\\WIN386.SWP size 16777217 min 128 max ?"},
      {host::SwapFile{}, "PagingDrive=C:\n", "Sleep", "C:\\Win386.swp size 77 min ? max ?"},
      {swap_file, "", "DeviceIoControl", guess},
      {std::nullopt, "MinPagingFileSize=5\n", "GetPrivateProfileStringA", guess},
      {std::nullopt, "", "GetWindowsDirectoryA", "\\Win386.swp size 77 min ? max ?"},
      {std::nullopt, "MinPagingFileSize=0x1000\nMaxPagingFileSize=-1\n", "Sleep",
       "C:\\WINDOWS\\Win386.swp size 0 min 4 max 4194303"},
      {std::nullopt, "MinPagingFileSize=\nMaxPagingFileSize=123456789012345678901\n", "Sleep",
       "C:\\WINDOWS\\Win386.swp size 0 min 0 max 3852226"},
  };
  for (const auto& row : rows) {
    DiskRun run(false);
    run.HoldFile("WIN386.SWP", 77ULL << 20);
    run.folder().Write("C/WINDOWS/SYSTEM.INI", std::string("[386enh]\n") + row.settings);
    run.machine().hardware.swap_file = row.swap_file;
    run.machine().faults.FailAlways(row.broken, ERROR_ACCESS_DENIED);
    ProbeContext context;
    ASSERT_TRUE(ReadPageFiles(context)) << row.broken;
    ASSERT_EQ(context.page_files.count(), 1) << row.broken;
    const auto& file = *context.page_files.GetAs<PageFileRecord>(0);
    EXPECT_EQ(std::string(file.name) + " size " + file.size + " min " + file.minimum + " max " +
                  file.maximum,
              row.expected)
        << row.broken;
  }
}

TEST(FreeResources, AreThoseOfTheKindsThatAreOn) {
  DiskRun run(false);
  for (unsigned kind = 0; kind < 3; ++kind)
    host::StateFreeResources(run.machine(), kind, 70 + kind);
  EXPECT_EQ(SystemValues(run, "FreeGDIResources=1\r\n"), "GDI            :  71%|");
}

}  // namespace
}  // namespace hostscope
