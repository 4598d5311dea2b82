// BIOS, memory, page files and free resources on machines of both families, and with platform calls
// failing.

#include <gtest/gtest.h>

#include <algorithm>

#include "probes/system/page_files.h"
#include "tests/support/system_lines.h"

namespace hostscope {
namespace {

using test::ReportRun;
using test::SystemLines;

constexpr char kEnumRoot[] = "HKLM\\Enum\\Root";
constexpr char kSystemKey[] = "HKLM\\HARDWARE\\DESCRIPTION\\System";
constexpr char kMemoryKey[] =
    "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";

void BecomeWindows98(ReportRun& run) {
  run.machine().version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
  run.machine().windows_folder = "C:\\WINDOWS";
  run.folder().Write("C/WINDOWS/win.ini", "");
  run.machine().files.MountDrive('C', run.folder().path() / "C");
}

std::string Bytes(const char* text) {
  return std::string(text) + '\0';
}

TEST(BiosVersion, OfBothFamilies) {
  struct Row {
    const char* what;
    bool is_nt;
    std::function<void(host::Machine&)> describe;
    const char* text;  // null: failed
  };
  const auto set = [](host::Machine& machine, const std::string& key, const char* name,
                      const char* text) {
    machine.registry.SetValue(key, name, REG_SZ, Bytes(text));
  };
  const auto describe_9x = [&](host::Machine& machine) {
    machine.registry.MakeKey(std::string(kEnumRoot) + "\\EMPTY");
    set(machine, std::string(kEnumRoot) + "\\FIRST", "BIOSVersion", "too high up");
    set(machine, std::string(kEnumRoot) + "\\FIRST\\0000", "BIOSDate", "no version");
    set(machine, std::string(kEnumRoot) + "\\*PNP0C01 with a long name\\0000", "BIOSVersion", "1");
    set(machine, std::string(kEnumRoot) + "\\*PNP0C01 with a long name\\0000", "BIOSDate", "2");
    set(machine, std::string(kEnumRoot) + "\\THIRD\\0000", "BIOSVersion", "3");
  };
  const std::string long_text(2000, 'x');
  const std::string cut(1023, 'x');
  const Row rows[] = {
      {"NT, several lines", true,
       [&](auto& machine) {
         machine.registry.SetValue(kSystemKey, "SystemBiosVersion", REG_MULTI_SZ,
                                   std::string("V1\0V2\0\0", 7));
         set(machine, kSystemKey, "SystemBiosDate", "01/02/03");
       },
       "V1 (01/02/03)"},
      {"NT, no terminator, no date", true,
       [&](auto& machine) {
         machine.registry.SetValue(kSystemKey, "SystemBiosVersion", REG_BINARY, "V1");
       },
       "V1"},
      {"NT, overlong", true,
       [&](auto& machine) {
         set(machine, kSystemKey, "SystemBiosVersion", long_text.c_str());
         set(machine, kSystemKey, "SystemBiosDate", "01/02/03");
       },
       cut.c_str()},
      {"NT, a date only", true,
       [&](auto& machine) {
         set(machine, kSystemKey, "SystemBiosDate", "01/02/03");
         describe_9x(machine);
       },
       nullptr},
      {"9x, the first of several", false, describe_9x, "1 (2)"},
      {"9x, the key does not tell its longest name", false,
       [&](auto& machine) {
         describe_9x(machine);
         machine.faults.FailAlways("RegQueryInfoKeyA", ERROR_ACCESS_DENIED);
       },
       "1 (2)"},
      {"9x, a device that does not open", false,
       [&](auto& machine) {
         describe_9x(machine);
         machine.registry.DenyAccess("HKLM\\Enum\\Root\\*PNP0C01 with a long name", 5);
       },
       "3"},
      {"9x, no root", false, [](auto&) {}, nullptr},
      {"9x, no enumeration", false,
       [&](auto& machine) {
         describe_9x(machine);
         machine.faults.FailAlways("RegEnumKeyA", ERROR_ACCESS_DENIED);
       },
       nullptr},
  };
  for (const Row& row : rows) {
    ReportRun run;
    if (!row.is_nt) BecomeWindows98(run);
    row.describe(run.machine());
    const std::string text = row.text == nullptr ? "" : row.text;
    EXPECT_EQ(SystemLines(run, "BIOSVersion"), "BIOS vesion                " + text + "\n" +
                                                   "[BIOS vesion...           " +
                                                   (row.text == nullptr ? "Failed]" : "Ok]"))
        << row.what;
    EXPECT_FALSE(run.machine().handles.OpenObjects().contains("key")) << row.what;
  }
}

TEST(Memory, WiderCallWhereThereIsIt) {
  struct Row {
    DWORD platform, major;
    std::uint64_t total, available;
    const char* broken;
    const char* text;
  };
  constexpr std::uint64_t kGigabyte = 1024 * 1024 * 1024;
  const Row rows[] = {
      {2, 5, 24 * kGigabyte, 6 * kGigabyte, nullptr, "75%| 24576 6144"},
      {2, 5, 24 * kGigabyte, 6 * kGigabyte, "GlobalMemoryStatusEx", "75%| 2047 2047"},
      {2, 4, kGigabyte, kGigabyte / 2 - 1, nullptr, "50%| 1024 511"},
      {1, 4, 0xFFFFFFFF, 0x000FFFFF, nullptr, "99%| 4095 0"},
      {1, 4, 0xFFFFFFFF, 0x000FFFFF, "GlobalMemoryStatus", "0%| 0 0"},
  };
  for (const Row& row : rows) {
    ReportRun run;
    run.machine().version.platform_id = row.platform;
    run.machine().version.major = row.major;
    run.machine().hardware.memory = {row.total, row.available, std::nullopt};
    if (row.broken != nullptr) run.machine().faults.FailAlways(row.broken, 5);
    const std::string text = row.text;
    const std::size_t bar = text.find('|');
    const std::size_t blank = text.rfind(' ');
    EXPECT_EQ(SystemLines(run, "MemoryUsage PhysicalMemory"),
              "Memory usage               " + text.substr(0, bar) +
                  "\nPhysical memory            total" + text.substr(bar + 1, blank - bar - 1) +
                  " Mb, available" + text.substr(blank) +
                  " Mb\n[Memory usage...          Ok][Physical memory...       Ok]")
        << row.text;
  }
}

TEST(PageFiles, OfNt) {
  struct Row {
    std::string list;
    std::string lines;
  };
  const std::string label = "Pagefile space             ";
  const std::string empty(27, ' ');
  const std::string deep = "C:\\" + std::string(300, 'd');
  const Row rows[] = {
      {Bytes("C:\\pagefile.sys 384 768"),
       label + "C:\\pagefile.sys, size 385 Mb, min 384 Mb, max 768 Mb\n"},
      {std::string("C:\\PAGEFILE.SYS 1 2\0D:\\pagefile.sys 3 4\0\0", 41),
       label + "C:\\PAGEFILE.SYS, size 385 Mb, min 1 Mb, max 2 Mb\n"},
      {Bytes("C:\\pagefile.sys 100 200 D:\\pagefile.sys 50 80"),
       label + "C:\\pagefile.sys, size 385 Mb, min 100 Mb, max 200 Mb\n" + empty +
           "D:\\pagefile.sys, size 0 Mb, min 50 Mb, max 80 Mb\n"},
      {Bytes("E:\\p 1 2 C:\\big.sys"), label + "E:\\p, size 0 Mb, min 1 Mb, max 2 Mb\n" + empty +
                                           "C:\\big.sys, size 5000 Mb, min  Mb, max  Mb\n"},
      {"one", label + "one, size 0 Mb, min  Mb, max  Mb\n"},  // and no terminator
      {Bytes("a  b "), label + "a, size 0 Mb, min  Mb, max b Mb\n"},
      {Bytes((deep + " 123456789012345678901234567890 2").c_str()),
       label + deep.substr(0, 259) + ", size 0 Mb, min 12345678901234567890 Mb, max 2 Mb\n"},
      {Bytes(""), ""},
  };
  for (const Row& row : rows) {
    ReportRun run;
    run.folder().Write("C/pagefile.sys", "");
    run.folder().Write("C/big.sys", "");
    run.machine().files.MountDrive('C', run.folder().path() / "C");
    run.machine().files.StateSize("C:\\pagefile.sys", (386ULL << 20) - 1);
    run.machine().files.StateSize("C:\\big.sys", 5000ULL << 20);
    run.machine().registry.SetValue(kMemoryKey, "PagingFiles", REG_MULTI_SZ, row.list);
    EXPECT_EQ(SystemLines(run, "Pagefiles"), row.lines + "[Pagefile space...        Ok]")
        << row.list;
    EXPECT_FALSE(run.machine().handles.OpenObjects().contains("search"));
  }
  ReportRun run;
  EXPECT_EQ(SystemLines(run, "Pagefiles"), label + "\n[Pagefile space...        Failed]");
}

TEST(PageFiles, EveryCallFillsTheListAnew) {
  ReportRun run;
  run.machine().registry.SetValue(kMemoryKey, "PagingFiles", REG_MULTI_SZ, Bytes("a 1 2"));
  const std::string line = "Pagefile space             a, size 0 Mb, min 1 Mb, max 2 Mb\r\n";
  const Item item = {.progress_label = "Pagefile space...", .write_lines = WritePageFiles};
  run.RunItems({item, item});
  EXPECT_EQ(run.Report(), line + line);
}

TEST(PageFiles, OfWindows98) {
  struct Row {
    const char* what;
    std::optional<host::SwapFile> swap_file;
    const char* settings;  // of [386Enh]
    std::function<void(host::Machine&)> change;
    std::string line;
  };
  const host::SwapFile swap_file = {"D:\\SWAP\\WIN386.SWP", (1ULL << 32) + 0x1FF};
  const std::string guess = "C:\\WINDOWS\\Win386.swp, size 0 Mb, min ? Mb, max ? Mb";
  const std::string long_path = "E:\\" + std::string(300, 'f');
  const auto fails = [](const char* call) {
    return [call](host::Machine& machine) { machine.faults.FailAlways(call, 5); };
  };
  const Row rows[] = {
      {"the device tells",
       swap_file,
       "PagingDrive=C:\nMinPagingFileSize=131072\n",
       {},
       "D:\\SWAP\\WIN386.SWP, size 16777217 Mb, min 128 Mb, max ? Mb"},
      {"the device knows no name",
       host::SwapFile{"", 5},
       "PagingDrive=C:\n",
       {},
       "C:\\Win386.swp, size 77 Mb, min ? Mb, max ? Mb"},
      {"the device refuses", swap_file, "", fails("DeviceIoControl"), guess},
      {"the device does not open", swap_file, "", fails("CreateFileA"), guess},
      {"no memory below 4 GB", swap_file, "", fails("VirtualAlloc"), guess},
      {"no device",
       std::nullopt,
       "MinPagingFileSize=0x1000\nMaxPagingFileSize=-1\n",
       {},
       "C:\\WINDOWS\\Win386.swp, size 0 Mb, min 4 Mb, max 4194303 Mb"},
      {"odd settings",
       std::nullopt,
       "MinPagingFileSize=\nMaxPagingFileSize=123456789012345678901\n",
       {},
       "C:\\WINDOWS\\Win386.swp, size 0 Mb, min 0 Mb, max 3852226 Mb"},
      {"no Windows folder", std::nullopt, "", fails("GetWindowsDirectoryA"),
       "\\Win386.swp, size 77 Mb, min ? Mb, max ? Mb"},
      {"no settings", std::nullopt, "MinPagingFileSize=5\n", fails("GetPrivateProfileStringA"),
       guess},
  };
  for (const Row& row : rows) {
    ReportRun run;
    BecomeWindows98(run);
    run.folder().Write("C/WIN386.SWP", "");
    run.machine().files.StateSize("C:\\WIN386.SWP", 77ULL << 20);
    run.folder().Write("C/WINDOWS/SYSTEM.INI", std::string("[386enh]\n") + row.settings);
    run.machine().hardware.swap_file = row.swap_file;
    // Not a whole run, which would meet the failing calls as well.
    if (row.change) row.change(run.machine());
    ProbeContext context;
    ASSERT_TRUE(ReadPageFiles(context)) << row.what;
    ASSERT_EQ(context.page_files.count(), 1) << row.what;
    const auto& file = *context.page_files.GetAs<PageFileRecord>(0);
    EXPECT_EQ(std::string(file.name) + ", size " + file.size + " Mb, min " + file.minimum +
                  " Mb, max " + file.maximum + " Mb",
              row.line)
        << row.what;
    for (const char* const kind : {"device", "pages", "search"})
      EXPECT_FALSE(run.machine().handles.OpenObjects().contains(kind)) << row.what << " " << kind;
  }
}

TEST(FreeResources, OneLineForEachKindThatIsOn) {
  const std::string label = "Free resources             ";
  const std::string empty(27, ' ');
  constexpr char kAll[] = "FreeSystemResources FreeGDIResources FreeUserResources";
  struct Row {
    const char* what;
    bool is_nt;
    const char* keys;
    std::function<void(host::Machine&)> change;
    std::string lines;
  };
  const auto state = [](host::Machine& machine) {
    for (const unsigned kind : {0U, 1U, 2U})
      host::StateFreeResources(machine, kind, 70 + kind);
  };
  const std::string no_figures = label + "System         :  \n" + empty + "GDI            :  \n" +
                                 empty + "User           :  \n";
  const Row rows[] = {
      {"all", false, kAll, state,
       label + "System         :  70%\n" + empty + "GDI            :  71%\n" + empty +
           "User           :  72%\n"},
      {"one", false, "FreeGDIResources", state, label + "GDI            :  71%\n"},
      {"NT", true, kAll, state, no_figures},
      {"no library", false, kAll, [](auto&) {}, no_figures},
      {"no function", false, kAll,
       [&](auto& machine) {
         state(machine);
         machine.libraries.RemoveExport("RSRC32.DLL", "_MyGetFreeSystemResources32@4");
       },
       no_figures},
  };
  for (const Row& row : rows) {
    ReportRun run;
    if (!row.is_nt) BecomeWindows98(run);
    row.change(run.machine());
    EXPECT_EQ(SystemLines(run, row.keys), row.lines + "[Free resources...        Ok]") << row.what;
    EXPECT_EQ(run.machine().libraries.References("RSRC32.DLL"), 0u) << row.what;
    EXPECT_EQ(run.machine().faults.CallCount("_MyGetFreeSystemResources32@4"),
              static_cast<unsigned>(std::count(row.lines.begin(), row.lines.end(), '%')))
        << row.what;
  }
}

}  // namespace
}  // namespace hostscope
