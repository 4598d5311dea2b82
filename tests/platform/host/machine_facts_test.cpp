#include "platform/host/machine_facts.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <functional>
#include <set>

#include "platform/host/advapi32.h"
#include "platform/host/kernel32.h"
#include "tests/support/test_folder.h"

namespace host {
namespace {

using namespace std::string_literals;

const std::string kVersion = "[Version]\nMajor=5\nMinor=0\nBuild=2195\nPlatform=2\n";

// The text of the error, or an empty one.
std::string State(const std::string& ini, Machine& machine) {
  std::vector<IniSection> sections;
  auto error = ReadIniText(ini, sections);
  if (!error) error = StateMachineFacts(sections, machine);
  return error ? std::to_string(error->line) + ": " + error->reason : "";
}

// What the reports of the sample machines do not show: the largest numbers, forms of numbers and
// times, letters beyond ASCII, blanks, and what a machine has instead of a thing.
TEST(MachineFacts, FormsOfFacts) {
  Machine machine;
  ASSERT_EQ(State(R"([Version]
Major=4
Minor=10
Build=0x040A08AE
Platform=1
ServicePackText=" A "
ServicePackMajor=3
ServicePackMinor=4
SuiteMask=0xFFFF
ExtendedRecord=no
[Clock]
LocalTime=1999-12-31 23:58:57.006
TickCount=4294967295
[Computer]
Name=KÜCHE
[User]
Domain=OFFICE
Imitated=LAB\bert
[SpecialFolders]
0x10=C:\WINDOWS\Desktop
[Environment]
ProgramFiles=C:\Programme
[Processor]
Age=80486
CounterFrequency=18446744073709551615
[ProcessorLeaves]
0x80000001=1 0x2  3 0xFFFFFFFF
[Memory]
Total=4096 MB
Available=4294967297
[SwapFile]
Pages=4294967296
[FreeResources]
GDI=78
[Screen]
BitsPerPixel=4
)",
                  machine),
            "");
  const WindowsVersion& version = machine.version;
  EXPECT_EQ(version.build, 0x040A08AEu);
  EXPECT_EQ(version.service_pack_text, " A ");
  EXPECT_EQ(version.service_pack_major, 3);
  EXPECT_EQ(version.service_pack_minor, 4);
  EXPECT_EQ(version.suite_mask, 0xFFFF);
  EXPECT_FALSE(version.extended_record);
  const LocalTime& time = machine.local_time;
  const WORD parts[] = {time.year,   time.month,  time.day,          time.hour,
                        time.minute, time.second, time.milliseconds, time.day_of_week};
  EXPECT_TRUE(std::ranges::equal(parts, std::array{1999, 12, 31, 23, 58, 57, 6, 5}));
  EXPECT_EQ(machine.tick_count, 0xFFFFFFFFu);
  EXPECT_EQ(machine.computer_name, "K\xDC"s + "CHE");
  EXPECT_EQ(machine.user.domain, "OFFICE");
  EXPECT_EQ(machine.user.imitated, "LAB\\bert");
  EXPECT_EQ(machine.special_folders, (std::map<int, std::string>{{16, "C:\\WINDOWS\\Desktop"}}));
  EXPECT_EQ(machine.environment["PROGRAMFILES"], "C:\\Programme");
  const Hardware& hardware = machine.hardware;
  EXPECT_EQ(hardware.processor.age, hostscope::ProcessorAge::k80486);
  EXPECT_EQ(hardware.processor.counter_frequency, 0xFFFFFFFFFFFFFFFF);
  const hostscope::ProcessorLeaf& leaf = hardware.processor.leaves.at(0x80000001);
  EXPECT_EQ((std::array{leaf.eax, leaf.ebx, leaf.ecx, leaf.edx}),
            (std::array{1u, 2u, 3u, 0xFFFFFFFFu}));
  EXPECT_EQ(hardware.memory.total, 0x100000000u);
  EXPECT_EQ(hardware.memory.available, 0x100000001u);
  EXPECT_EQ(hardware.swap_file->pages, 0x100000000u);
  EXPECT_EQ(hardware.free_resources, (std::array<DWORD, 3>{0, 78, 0}));
  EXPECT_EQ(machine.desktop.bits_per_pixel, 4);
}

TEST(MachineFacts, DisplayDirectXAndJoysticks) {
  Machine machine;
  ASSERT_EQ(State(kVersion + R"([Libraries]
DDRAW.DLL=without DirectDrawCreateEx
D3D8.DLL=absent
[Screen]
SystemFontHeight=20
[DisplayModes]
8=640x480, 65535x1
16=640x480
[DirectX]
Release=8
Accelerates3D=yes
[Joysticks]
Slots=2
Connected=1, 0
)",
                  machine),
            "");
  EXPECT_EQ(machine.display.system_font_height, 20);
  std::string modes;
  for (const DisplayMode& mode : machine.display.modes) {
    for (const DWORD number : {mode.width, mode.height, mode.bits_per_pixel})
      modes += std::to_string(number) + " ";
  }
  EXPECT_EQ(modes, "640 480 8 65535 1 8 640 480 16 ");
  EXPECT_TRUE(machine.direct_x.accelerates_3d);
  EXPECT_EQ(machine.joysticks.slots, 2u);
  EXPECT_EQ(machine.joysticks.connected, (std::vector<UINT>{1, 0}));
  // What is lacking goes over what the release brings, also when it is stated first.
  HMODULE const draw = machine.libraries.Load("DDRAW.DLL", "");
  EXPECT_NE(machine.libraries.Function(draw, "DirectDrawCreate"), nullptr);
  EXPECT_EQ(machine.libraries.Function(draw, "DirectDrawCreateEx"), nullptr);
  EXPECT_NE(machine.libraries.Load("DINPUT.DLL", ""), nullptr);
  EXPECT_EQ(machine.libraries.Load("D3D8.DLL", ""), nullptr);
  const std::string depths = " of bits per pixel (1, 4, 8, 16, 24 or 32)";
  const std::string sizes = " of sizes (\"640x480, 800x600\")";
  const std::pair<std::string, std::string> wrong[] = {
      {"[Screen]\nHeight=0\n", "7: Height: the screen has at least one pixel"},
      {"[Screen]\nBitsPerPixel=15\n", "7: BitsPerPixel: the value is no number" + depths},
      {"[DisplayModes]\nmany=640x480\n", "7: many: the key is no number" + depths},
      {"[DisplayModes]\n12=640x480\n", "7: 12: the key is no number" + depths},
      {"[DisplayModes]\n8=640\n", "7: 8: the value is no list" + sizes},
      {"[DisplayModes]\n8=640x480, 800x0\n", "7: 8: the value is no list" + sizes},
      {"[DisplayModes]\n8=0x480\n", "7: 8: the value is no list" + sizes},
      {"[DirectX]\nRelease=4\n",
       "7: Release: the value is neither \"none\" nor one of 1, 2, 3, 5, 6, 6.1, 7 and 8"},
      {"[Joysticks]\nConnected=x\n", "7: Connected: the value is no list of joystick numbers"},
      {"[Joysticks]\nConnected=0, 2\nSlots=2\n",
       "0: [Joysticks] Connected: there is no slot of number 2"},
  };
  for (const auto& [ini, error] : wrong) {
    Machine other;
    EXPECT_EQ(State(kVersion + ini, other), error) << ini;
  }
}

TEST(MachineFacts, NetworkAndPrinters) {
  Machine machine;
  ASSERT_EQ(State(kVersion + R"([Sockets]
Version=1.255
[Hosts]
a=also www
b=10.0.0.255,1.2.3.4 also c, d
[Printers]
\\S\P=P:
Q=LPT1:, shared, network, server \\S, denied 5, 0x800
R=LPT2:, local, default, shared R 2
)",
                  machine),
            "");
  EXPECT_EQ(machine.network.version, 0xFF01);
  EXPECT_EQ(machine.network.hosts.at(0).aliases, std::vector<std::string>{"www"});
  const NetworkHost& host = machine.network.hosts.at(1);
  EXPECT_EQ(host.addresses, (std::vector<InternetAddress>{{10, 0, 0, 255}, {1, 2, 3, 4}}));
  EXPECT_EQ(host.aliases, (std::vector<std::string>{"c", "d"}));
  std::string printers;
  for (const Printer& one : machine.printers.installed)
    printers += one.name + "|" + one.port.value_or("-") + "|" + one.server.value_or("-") + "|" +
                one.share_name.value_or("-") + "|" + std::to_string(one.attributes) + "|" +
                std::to_string(one.open_error) + ";";
  EXPECT_EQ(printers, "\\\\S\\P|P:|-|-|0|0;Q|LPT1:|\\\\S||2072|5;R|LPT2:|-|R 2|76|0;");
}

TEST(MachineFacts, TheCurrentUsersKey) {
  const struct {
    std::string ini;
    std::string expected;
  } rows[] = {
      {kVersion, "S-1-5-21-1482476501-1644491937-682003330-1003"},
      {kVersion + "[User]\nSid=S-1-5-21-7", "S-1-5-21-7"},
      {kVersion + "[User]\nRegistryKey=.DEFAULT", ".DEFAULT"},
      {"[Version]\nMajor=4\nMinor=0\nBuild=950\nPlatform=1", ".DEFAULT"},
  };
  for (const auto& row : rows) {
    Machine machine;
    ASSERT_EQ(State(row.ini, machine), "");
    machine.registry.MakeKey("HKCU\\x");
    EXPECT_EQ(machine.registry.Root(Hive::kUsers)->subkeys.At(0, false)->name, row.expected);
  }
}

TEST(MachineFacts, Libraries) {
  Machine machine;
  const std::string library = "KERNEL32.DLL";
  machine.libraries.Add({.name = "OLD.DLL"});
  machine.libraries.Add({.name = "PART.DLL",
                         .exports = {{"One", Export(GetTickCount)},
                                     {"Two", Export(GetTickCount)},
                                     {"Three", Export(GetTickCount)}}});
  ASSERT_EQ(State(kVersion + "[Libraries]\nOLD.DLL=absent\nNEW.DLL=present\n"
                             "part.dll=without One, Three\nC:\\Own\\own.dll=like PART.DLL",
                  machine),
            "");
  const HMODULE own = machine.libraries.Load("c:\\own\\OWN.DLL", "C:\\WINNT");
  EXPECT_NE(machine.libraries.Function(own, "Two"), nullptr);
  EXPECT_EQ(machine.libraries.Load("OLD.DLL", "C:\\WINNT"), nullptr);
  EXPECT_NE(machine.libraries.Load("NEW.DLL", "C:\\WINNT"), nullptr);
  const HMODULE part = machine.libraries.Load("PART.DLL", "C:\\WINNT");
  EXPECT_EQ(machine.libraries.Function(part, "One"), nullptr);
  EXPECT_NE(machine.libraries.Function(part, "Two"), nullptr);
  EXPECT_EQ(machine.libraries.Function(part, "Three"), nullptr);
}

TEST(MachineFacts, PlugIns) {
  Machine machine;
  ASSERT_EQ(State(kVersion + "[PlugIns]\na,b.dll,Write = yes  \"K\u00dc \\\"x\\\"\\\\y\\r\\n\"\n"
                             "C:\\T\\p.dll,A=no\nC:\\T\\p.dll,B=yes",
                  machine),
            "");
  const UseMachine use(machine);
  const auto function = [&](const char* library, const char* name) {
    return machine.libraries.Function(machine.libraries.Load(library, "C:\\WINNT"), name);
  };
  EXPECT_NE(function("a,b.dll", "Write"), nullptr);
  EXPECT_EQ(function("a,b.dll", "write"), nullptr);
  EXPECT_NE(function("C:\\T\\p.dll", "A"), function("c:\\t\\P.DLL", "B"));
  EXPECT_EQ(machine.libraries.Load("p.dll", "C:\\WINNT"), nullptr);
  hostscope::test::TestFolder folder;
  const HANDLE file =
      CreateFileA(folder.PathOf("out").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  EXPECT_TRUE(machine.plug_ins.Run(0, file));
  EXPECT_FALSE(machine.plug_ins.Run(1, file));
  CloseHandle(file);
  EXPECT_EQ(folder.Read("out"), "K\xDC \"x\"\\y\r\n");
}

TEST(MachineFacts, DeniedKeys) {
  Machine machine;
  ASSERT_EQ(State(kVersion + "[DeniedKeys]\nHKLM\\SECURITY=5\nhku\\S-1-5-18 = 0x57", machine), "");
  const UseMachine use(machine);
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Security", 0, KEY_READ, &key), 5);
  EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "S-1-5-18", 0, KEY_READ, &key), 0x57);
}

TEST(MachineFacts, Faults) {
  Machine machine;
  ASSERT_EQ(State(kVersion + "[Faults]\nGetComputerNameA=always 5\n"
                             "RegOpenKeyExA=call 2 0x57, call 3  6",
                  machine),
            "");
  EXPECT_EQ(machine.faults.Enter("GetComputerNameA"), 5u);
  const std::vector<std::optional<DWORD>> expected = {std::nullopt, 0x57, 6, std::nullopt};
  for (const auto& error : expected)
    EXPECT_EQ(machine.faults.Enter("RegOpenKeyExA"), error);
}

TEST(MachineFacts, WhatIsWrong) {
  const struct {
    std::string lines;  // after [Version], its four keys and a line "[section]": from line 7
    std::string section;
    std::string error;
  } rows[] = {
      {"", "Versoin", "6: there is no section [Versoin]"},
      {"", "clock", "6: there is no section [clock]"},
      {"Name=a\nname2=b", "Computer", "8: section [Computer] has no key name2"},
      {"Primary=absent", "IdeControllers", "7: Primary: the value is neither \"present\" nor"},
      {"Primary=fixed 1/1/1 \"\" \"\" \"\"", "IdeDrives", "7: Primary: the key is no drive"},
      {"Primary master=disk", "IdeDrives", "7: Primary master: the value begins with none of"},
      {"Primary master=fixed 65536/1/1 \"\" \"\" \"\"", "IdeDrives",
       "7: Primary master: behind the kind there are no numbers of cylinders"},
      {"Primary master=packet \"\" \"\" \"123456789\"", "IdeDrives",
       "7: Primary master: the value does not end with model, serial number and revision"},
      {"0=other\n0x0=other", "PhysicalDrives", "8: 0x0: the drive's number stands twice"},
      {"3=Secondary slave", "PhysicalDrives", "0: [PhysicalDrives] 3: there is no such IDE drive"},
      {"c=fixed", "Drives", "7: c: the key is no letter from A to Z"},
      {"C=floppy 8 KB", "Drives", "7: C: there is no such type of drive"},
      {"Version=1", "Sockets", "7: Version: the value is no version"},
      {"Version=1.256", "Sockets", "7: Version: the value is no version"},
      {"a=1.2.3", "Hosts", "7: a: the value does not begin with addresses"},
      {"a=1.2.3.256", "Hosts", "7: a: the value does not begin with addresses"},
      {"a=P, denied", "Printers", "7: a: behind the port stand"},
      {"a=P, server", "Printers", "7: a: behind the port stand"},
      {"a=P, local x", "Printers", "7: a: behind the port stand"},
      {"a=P, other", "Printers", "7: a: behind the port stand"},
      {"C=fixed, FAT, 6, 8/512, 1", "Drives", "7: C: behind the type there are no file system"},
      {"TickCount=", "Clock", "7: TickCount: the value is no number from 0 to 4294967295"},
      {"TickCount=1s", "Clock", "7: TickCount: the value is no number"},
      {"TickCount=-1", "Clock", "7: TickCount: the value is no number"},
      {"TickCount=0x", "Clock", "7: TickCount: the value is no number"},
      {"TickCount=4294967296", "Clock", "7: TickCount: the value is no number"},
      {"Width=4294967295", "Screen", "7: Width: the value is no number from 0 to 2147483647"},
      {"LocalTime=2001-02-29 00:00:00", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=2001-02-28", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=2001-02-28 24:00:00", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=2001-02-28 1:2:3.4.5", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=2001-0x2-28 00:00:00", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=2001-02-28 00:00:00.1000", "Clock", "7: LocalTime: the value is no time"},
      {"LocalTime=1600-02-28 00:00:00", "Clock", "7: LocalTime: the value is no time"},
      {"Sid=S-1-5", "User", "7: Sid: the value is no security identifier"},
      {"Desktop=C:\\", "SpecialFolders", "7: Desktop: the key is no number"},
      {"16=C:\\\n0x10=D:\\", "SpecialFolders", "8: 0x10: the folder's number stands twice"},
      {"Age=Pentium", "Processor", "7: Age: the value is neither"},
      {"Real=yes\nCounterFrequency=5", "Processor", "0: [Processor] Real: the processor is"},
      {"x=1 2 3 4", "ProcessorLeaves", "7: x: the key is no number of a leaf"},
      {"1=1 2 3", "ProcessorLeaves", "7: 1: the value is not the four numbers"},
      {"1=1 2 3 4 5", "ProcessorLeaves", "7: 1: the value has more than four"},
      {"1=1 2 3 4\n0x1=1 2 3 4", "ProcessorLeaves", "8: 0x1: the leaf's number stands twice"},
      {"Total=256MB", "Memory", "7: Total: the value is no number of bytes"},
      {"Total=17592186044416 MB", "Memory", "7: Total: the value is no number of bytes"},
      {"Total=18446744073709551616", "Memory", "7: Total: the value is no number of bytes"},
      {"Load=101", "Memory", "7: Load: the value is no number from 0 to 100"},
      {"Pages=-1", "SwapFile", "7: Pages: the value is no number from 0 to 18446744073709551615"},
      {"User=101", "FreeResources", "7: User: the value is no number from 0 to 100"},
      {"C:\\f=big", "FileSizes", "7: C:\\f: the value is no number of bytes"},
      {"Software=5", "DeniedKeys", "7: Software: the key is no path that begins with a hive"},
      {"HKCU\\K=5", "DeniedKeys", "7: HKCU\\K: a key of the user is stated below HKU"},
      {"HKLM\\K=0", "DeniedKeys", "7: HKLM\\K: the value is no error code"},
      {"X.DLL=yes", "Libraries", "7: X.DLL: the value is neither"},
      {"X.DLL=like Y.DLL", "Libraries", "7: X.DLL: the machine has no library of that name"},
      {"X.DLL=without", "Libraries", "7: X.DLL: the value is neither"},
      {"X.DLL=without A,,B", "Libraries", "7: X.DLL: the name of a function is missing"},
      {"p.dll=yes", "PlugIns", "7: p.dll: the key is no library and function"},
      {"p.dll,=yes", "PlugIns", "7: p.dll,: the key is no library and function"},
      {"p,F=on", "PlugIns", "7: p,F: the value is neither \"yes\" nor \"no\""},
      {"p,F=yes x", "PlugIns", "7: p,F: the text is not between double quotes"},
      {"p,F=yes \"a\"b\"", "PlugIns", "7: p,F: the text is not between double quotes"},
      {"p,F=yes \"\\x\"", "PlugIns", "7: p,F: the text is not between double quotes"},
      {"p,F=yes \"\\\"", "PlugIns", "7: p,F: the text is not between double quotes"},
      {"GetComputerName=always 5", "Faults", "7: GetComputerName: the layer has no function"},
      {"Sleep=5", "Faults", "7: Sleep: the value is neither"},
      {"Sleep=always", "Faults", "7: Sleep: the value is neither"},
      {"Sleep=always 0", "Faults", "7: Sleep: the value is neither"},
      {"Sleep=call 5", "Faults", "7: Sleep: the value is neither"},
      {"Sleep=call 0 5", "Faults", "7: Sleep: the value is neither"},
      {"Sleep=call 1 5 6", "Faults", "7: Sleep: the value is neither"},
  };
  for (const auto& row : rows) {
    Machine machine;
    const std::string error = State(kVersion + "[" + row.section + "]\n" + row.lines, machine);
    EXPECT_EQ(error.substr(0, row.error.size()), row.error) << row.lines;
  }
  Machine machine;
  EXPECT_EQ(State("[Version]\nMajor=4\nMinor=0\nBuild=950", machine),
            "0: [Version] Platform is missing");
  EXPECT_EQ(State(kVersion + "ServicePackText=" + std::string(128, 'x'), machine),
            "6: ServicePackText: the text is longer than the 127 characters of its field");
  EXPECT_EQ(State(kVersion + "ExtendedRecord=1", machine),
            "6: ExtendedRecord: the value is neither \"yes\" nor \"no\"");
  EXPECT_EQ(State(kVersion + "ProductType=256", machine),
            "6: ProductType: the value is no number from 0 to 255");
}

TEST(MachineFacts, VersionsOfLibrariesAndTimesOfFiles) {
  Machine machine;
  ASSERT_EQ(
      State(kVersion + "[DllVersions]\nCOMCTL32.DLL=5.81.4916.7\nOLD.DLL=20-byte 4.72.3110\n"
                       "NO.DLL=refused\nC:\\Apps\\own=1.2.3.4\n[FileTimes]\n*=2001-02-03 04:05:06\n"
                       "C:\\A=1999-12-31 23:59:59.5\n",
            machine),
      "");
  EXPECT_EQ(machine.files.StatedWriteTime("c:\\b"), 126256467060000000);
  EXPECT_EQ(machine.files.StatedWriteTime("c:\\a"), 125911583990050000);
  EXPECT_EQ(machine.files.StatedWriteTime("/home/a"), std::nullopt);
  std::string many = kVersion + "[DllVersions]\n";
  for (std::size_t i = 0; i <= kMostDllVersions; ++i)
    many += "A" + std::to_string(i) + ".DLL=refused\n";
  const std::string malformed =
      "the value is neither a version (5.81.4916.0), \"20-byte\" and three numbers of one nor "
      "\"refused\"";
  const std::pair<std::string, std::string> rows[] = {
      {many, "71: A64.DLL: there are more than 64 of them"},
      {kVersion + "[DllVersions]\nA.DLL=5.81.4916\n", "7: A.DLL: " + malformed},
      {kVersion + "[DllVersions]\nA.DLL=5.81.4916.65536\n", "7: A.DLL: " + malformed},
      {kVersion + "[DllVersions]\nA.DLL=20-byte 5.81.4916.0\n", "7: A.DLL: " + malformed},
      {kVersion + "[FileTimes]\nA=2001-02-03 04:05:06\n",
       "7: A: the key is neither a full path nor \"*\""},
      {kVersion + "[FileTimes]\n*=2001-02-30 04:05:06\n",
       "7: *: the value is no time of the form 2002-03-07 09:05:00.000"},
  };
  for (const auto& [ini, expected] : rows) {
    Machine other;
    EXPECT_EQ(State(ini, other), expected);
  }
}

// docs/machines.md has a heading "### [Section]" and a table row "| `Key` |" for each of them.
TEST(MachineFacts, TheDescriptionNamesThemAll) {
  std::ifstream stream(HOSTSCOPE_SOURCE_FOLDER "/docs/machines.md");
  ASSERT_TRUE(stream.is_open());
  std::set<std::pair<std::string, std::string>> described;
  std::string section;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("#")) section.clear();
    if (line.starts_with("### [")) section = line.substr(5, line.find(']') - 5);
    if (!section.empty() && line.starts_with("| `")) {
      described.emplace(section, line.substr(3, line.find('`', 3) - 3));
    }
  }
  std::set<std::pair<std::string, std::string>> facts;
  for (const auto& [fact_section, key] : MachineFactNames())
    facts.emplace(fact_section, key);
  EXPECT_EQ(described, facts);
}

}  // namespace
}  // namespace host
