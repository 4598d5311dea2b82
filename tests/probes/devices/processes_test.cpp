// The process list of both families, also damaged, without end and too long.

#include "probes/devices/processes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;

constexpr char kProfile[] = "[PROCESS]\r\nProcesses=1\r\n";

TEST(Processes, ListsWithoutEndOrRoomAreGivenUp) {
  ReportRun endless;
  endless.machine().version.platform_id = 1;
  endless.machine().processes.listed = {{.id = 0xFFF1, .name = "K"}};
  endless.machine().libraries.Add(
      {.name = "KERNEL32.DLL",
       .exports = {{"Process32Next", host::Export(+[](HANDLE, LPPROCESSENTRY32 entry) {
                      std::memset(entry->szExeFile, 'x', sizeof entry->szExeFile);
                      return BOOL{TRUE};
                    })}}});
  endless.Run(kProfile);
  EXPECT_TRUE(endless.LastSection().starts_with("Processes (total 4096)"));
  ReportRun too_long;
  too_long.machine().processes.listed = {{.id = 4, .name = "K", .threads = 1100}};
  too_long.Run(kProfile);
  EXPECT_EQ(too_long.SqueezedSection(), "Processes|");
  EXPECT_EQ(too_long.Progress().back(), "Processes...             Failed");
}

// A library that the process does not have is loaded, and given back on every path; the functions
// are looked up anew each time.
TEST(Processes, ALibraryLoadedHereIsGivenBack) {
  ReportRun run;
  Machine& machine = run.machine();
  machine.libraries.Remove("NTDLL.DLL");
  machine.libraries.Add({.name = "NTDLL.DLL", .exports = {HOST_EXPORT(NtQuerySystemInformation)}});
  ProbeContext context;
  RecordArray processes;
  ASSERT_TRUE(processes.Create(sizeof(ProcessRecord)));
  EXPECT_TRUE(LoadProcessFunctions(context) && LoadProcessFunctions(context));
  EXPECT_EQ(machine.libraries.References("NTDLL.DLL"), 1u);
  EXPECT_TRUE(CollectProcesses(context, processes));
  EXPECT_EQ(machine.libraries.References("NTDLL.DLL"), 0u);
  machine.libraries.RemoveExport("NTDLL.DLL", "NtQuerySystemInformation");
  EXPECT_FALSE(CollectProcesses(context, processes));
  EXPECT_EQ(machine.libraries.References("NTDLL.DLL"), 0u);
  EXPECT_EQ(processes.count(), 1);
}

std::function<void(char* list, DWORD address)> spoil;

LONG WINAPI SpoiltList(ULONG information_class, PVOID list, ULONG size, ULONG* returned) {
  const LONG status = NtQuerySystemInformation(information_class, list, size, returned);
  spoil(static_cast<char*>(list), static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(list)));
  return status;
}

TEST(Processes, ADamagedListIsSafe) {
  const std::string all = "first;second;hscope.exe;", others = "second;hscope.exe;";
  // Of the first entry: where the next one is, the name's length, most length and address.
  const struct {
    const char* what;
    std::size_t offset;
    DWORD value;
    bool of_list;  // the value is an offset in the list
    std::string images;
  } rows[] = {
      {"sound", 0x40, 0, false, all},
      {"next into itself", 0, 4, false, "first;"},
      {"next far out", 0, 0xFFFFFFF0, false, "first;"},
      {"next at the end", 0, 65536, false, "first;"},
      {"next in part behind the end", 0, 65536 - 0x83, false, "first;"},
      {"no address", 0x3C, 0, false, ";" + others},
      {"odd address", 0x3C, 0x89, true, ";" + others},
      {"before the list", 0x3C, 0xFFFFFFFE, true, ";" + others},
      {"at the end", 0x3C, 65536, true, ";" + others},
      {"in part behind the end", 0x3C, 65536 - 8, true, ";" + others},
      {"no length", 0x38, 12 << 16, false, ";" + others},
      {"half a character", 0x38, 12 << 16 | 5, false, "fi;" + others},
      {"longer than its room", 0x38, 4 << 16 | 10, false, "fi;" + others},
      {"no room", 0x38, 10, false, ";" + others},
      {"longer than the list", 0x38, 0xFFFFFFFF, false, ";" + others},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    machine.processes.listed = {{.id = 4, .name = "first", .threads = 0},
                                {.id = 8, .name = "second"}};
    machine.libraries.Add({.name = "NTDLL.DLL",
                           .exports = {{"NtQuerySystemInformation", host::Export(&SpoiltList)}}});
    spoil = [&](char* list, DWORD address) {
      const DWORD value = row.value + (row.of_list ? address : 0);
      std::memcpy(list + row.offset, &value, sizeof value);
    };
    ProbeContext context;
    RecordArray processes;
    ASSERT_TRUE(processes.Create(sizeof(ProcessRecord)));
    EXPECT_TRUE(CollectProcesses(context, processes)) << row.what;
    std::string images;
    for (int i = 0; i < processes.count(); ++i)
      images += processes.GetAs<ProcessRecord>(i)->image_name + std::string(";");
    EXPECT_EQ(images, row.images) << row.what;
  }
}

TEST(Processes, LongNamesAreCut) {
  ReportRun run;
  run.machine().processes.listed = {
      {.id = 4, .name = std::string(300, 'n') + "\x80", .pagefile = 4294967295}};
  run.Run(kProfile);
  EXPECT_NE(run.Report().find(":  " + std::string(259, 'n') + "\r\n"), std::string::npos);
  EXPECT_NE(run.Report().find(":  4294967295 b\r\n"), std::string::npos);
}

TEST(Processes, PriorityClassNames) {
  constexpr std::pair<std::uint32_t, const char*> kRows[] = {
      {0x20, "normal"},    {0x40, "idle"}, {0x80, "high"},      {0x100, "real-time"},
      {0x4000, "unknown"}, {0, "unknown"}, {0x8000, "unknown"}, {0x21, "unknown"}};
  for (const auto& [number, name] : kRows)
    EXPECT_STREQ(PriorityClassName(number), name) << number;
}

}  // namespace
}  // namespace hostscope
