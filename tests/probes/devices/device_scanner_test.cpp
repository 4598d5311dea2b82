// The device scanner on machines of both families, and with platform calls failing.

#include "probes/devices/device_scanner.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "probes/devices/old_nt_devices.h"
#include "tests/support/registry_notation.h"
#include "tests/support/report_run.h"
#include "tests/support/test_folder.h"
#include "tests/support/versioned_file.h"

namespace hostscope {
namespace {

const host::WindowsVersion kWindows98 = {4, 10, 0x040A08AE, 1};
const host::WindowsVersion kNt351 = {3, 51, 1057};
const host::WindowsVersion kNt4 = {4, 0, 1381};
const host::WindowsVersion kWindows2000 = {5, 0, 2195};

constexpr char kNtDevices[] = R"(
[class 965 CDROM]
[class 96c MEDIA]
[class 96d Modem]
[class 96e Monitor]
[class 972 Net]
[class 978 Ports]
[class 979 Modem]
[CCS\Control\Class\m\1]  "DriverDate"="6-6-2001"  "AttachedTo"="COM3"  "NetCfgInstanceId"="{A}"
[CCS\Control\Class\m\2]  "DriverDate"="12345678901"  "NetCfgInstanceId"="{B}"
[CCS\Control\Class\m\3]  "NetCfgInstanceId"="{C}"
[device 96E D\b\Everything]  "FriendlyName"="Big"  "DeviceDesc"="Screen"  "Mfg"="Maker"
"Driver"="m\\1"
[device 96e D\a\Second name]  "FriendlyName"=hex:  "DeviceDesc"="Small"  "Mfg"=hex(1):
"Service"="audstub"
[device 96e D\c\Nothing]  "Driver"="none"
[CCS\Enum\D\c\Not present]  "ClassGUID"="<96e>"
[device 96e D\d\Lengths]  "FriendlyName"="<N>"  "Mfg"=hex:41,42  "Driver"=hex:6d,5c,32
[device 96e D\d\Types]  "FriendlyName"=hex(7):61,00,62,00,00  "Mfg"=dword:00004443
[device 96e D\e\Empty text]  "FriendlyName"=""  "DeviceDesc"="not this"
[device 965 C\c\CD]  "CurrentDriveLetterAssignment"="D"  "AutoInsertNotification"=hex:09
[CCS\Services\Cdrom]  "Autorun"=dword:00000102
[device 972 N\n\No id]
[device 972 N\n\With addresses]  "Driver"="m\\1"
[CCS\Services\{A}\Parameters\Tcpip]  "EnableDHCP"=dword:00000100
"IPAddress"=hex(7):31,2e,32,00,33,2e,34,00,00  "SubnetMask"="255.255.255.255.255"
[device 972 N\n\With a bare key]  "Driver"="m\\2"
[CCS\Services\{B}\Parameters\Tcpip]  "EnableDHCP"=hex:01
[device 972 N\n\Without a key]  "Driver"="m\\3"
[device 96d M\m\1]  "Driver"="m\\1"
[device 96d M\m\2]  "AttachedTo"="not this"
[device 978 P\p\1]  "PORTNAME"="not this"
[device 978 P\p\2]
[CCS\Enum\P\p\2\Device Parameters]  "PortName"="LPT1"
[device 96c S\s\1]  "Service"="audstub"
[device 96c S\s\2]  "Service"="audstub2"
)";

constexpr char kWindows98Devices[] = R"(
[CCS\Services\Class\Modem]  "Link"="{00000000-1234-5678-9abc-00AA00BB00CC}"
[CCS\Services\Class\Net\1]  "DriverDate"="1-1-1999"  "AttachedTo"="COM2"
[HKLM\Enum\B\b\1]  "Class"="cdrom"  "CurrentDriveLetterAssignment"="DE"
"AutoInsertNotification"=hex:02
[HKLM\Enum\B\b\0]  "ClassGUID"="<965>"  "Class"="Net"  "CurrentDriveLetterAssignment"="<N>"
[CCS\Services\Cdrom]  "Autorun"=dword:00000001
[HKLM\Enum\A\n\1]  "Class"="Net"  "Driver"="Net\\1"
[HKLM\Enum\A\p\1]  "Class"="Ports"  "PORTNAME"="COM1"
[HKLM\Enum\A\m\1]  "ClassGUID"="{00000000-1234-5678-9ABC-00aa00bb00cc}"  "Driver"="Net\\1"
)";

constexpr char kPresentOnWindows98[] = R"(
[HKDD\Config Manager\Enum\C1]  "HardWareKey"="B\\B\\1"
[HKDD\Config Manager\Enum\C2]  "HardWareKey"="A\\n\\1"
)";

std::string Extras(const DeviceRecord&) {
  return "";
}
std::string Extras(const CdromRecord& record) {
  return std::string("|") + record.drive_letters + "|" + std::to_string(record.autorun);
}
std::string Extras(const NetCardRecord& record) {
  return std::string("|") + record.ip_address + "|" + record.subnet_mask + "|" +
         std::to_string(record.dhcp_enabled);
}
std::string Extras(const ModemRecord& record) {
  return std::string("|") + record.attached_to;
}
std::string Extras(const PortRecord& record) {
  return std::string("|") + record.port_name;
}

class DeviceScanner : public testing::Test {
 protected:
  DeviceScanner() : use_(machine_) { test::DescribeWindows2000(machine_); }

  void Become(const host::WindowsVersion& version, const std::string& exports) {
    machine_.version = version;
    for (const char* const key : {"HKLM\\SYSTEM", "HKLM\\SOFTWARE", "HKLM\\Enum", "HKCU\\Software"})
      machine_.registry.RemoveKey(key);
    test::ReadRegistryNotation(machine_, exports);
  }

  // What is appended, behind the number that the scanner answers; nothing may stay open.
  std::string Scan(const std::string& name) {
    if (name == "CDROM") return ScanFor<CdromRecord>("cdrom");
    if (name == "Net") return ScanFor<NetCardRecord>("NET");
    if (name == "Modem") return ScanFor<ModemRecord>("modem");
    if (name == "Ports") return ScanFor<PortRecord>("PORTS");
    return ScanFor<DeviceRecord>(name.c_str());
  }
  std::string ListComponents(const char* class_name) {
    StringList names;
    names.Create();
    std::string text = std::to_string(ScanDeviceClass(ProbeContext(), class_name, names)) + ":";
    for (int i = 0; i < names.count(); ++i)
      text += std::string(" ") + names.Get(i) + ";";
    return text;
  }

  host::Machine machine_;
  host::UseMachine use_;

 private:
  template <typename Record>
  std::string ScanFor(const char* class_name) {
    const auto open_before = machine_.handles.OpenObjects();
    std::string text;
    {
      RecordArray records;
      records.Create(sizeof(Record));
      text = std::to_string(ScanDeviceClass(ProbeContext(), class_name, records)) + ":";
      for (int i = 0; i < records.count(); ++i) {
        const Record& record = *records.GetAs<Record>(i);
        text += std::string(" ") + record.name + "|" + record.manufacturer + "|" +
                record.driver_date + Extras(record) + ";";
      }
    }
    EXPECT_EQ(machine_.handles.OpenObjects(), open_before) << class_name;
    return text;
  }
};

TEST_F(DeviceScanner, Records) {
  const std::string long_name(255, 'n');
  const struct {
    const host::WindowsVersion& version;
    std::string exports;
    const char* device_class;
    std::string expected;
  } rows[] = {
      {kWindows2000, kNtDevices, "mONITOR",
       "6: Small||; Big|Maker|6-6-2001; ||; " + long_name + "|AB|1234567890; a|CD|; ||;"},
      {kWindows2000, kNtDevices, "CDROM", "1: |||D|2;"},
      {kWindows2000, kNtDevices, "Net", "2: ||1234567890|||0; ||6-6-2001|1.2|255.255.255.255|256;"},
      {kWindows2000, kNtDevices, "Modem", "2: ||6-6-2001|COM3; |||;"},
      {kWindows2000, kNtDevices, "Ports", "2: |||; |||LPT1;"},
      {kWindows2000, kNtDevices, "Media", "1: ||;"},
      {kWindows2000, kNtDevices, "Toaster", "0:"},
      {kWindows2000, kNtDevices, "netclient", "-1:"},
      {kWindows98, kWindows98Devices, "CDROM", "2: |||DE|2; |||" + std::string(25, 'n') + "|0;"},
      {kWindows98, kWindows98Devices, "Net", "1: ||1-1-1999|||0;"},
      {kWindows98, kWindows98Devices, "Ports", "1: |||COM1;"},
      {kWindows98, kWindows98Devices, "Modem", "1: ||1-1-1999|COM2;"},
      {kWindows98, kWindows98Devices + std::string(kPresentOnWindows98), "CDROM", "1: |||DE|2;"},
  };
  for (const auto& row : rows) {
    Become(row.version, row.exports);
    EXPECT_EQ(Scan(row.device_class), row.expected) << row.version.minor << row.device_class;
  }
}

constexpr char kOldNtFallbacks[] = R"(
[HKLM\Software\Microsoft\Windows NT\CurrentVersion\NetworkCards\2]  "Description"="Second"
"Manufacturer"="Maker"
[HKLM\Software\Microsoft\Windows NT\CurrentVersion\NetworkCards\1]  "Manufacturer"="Other"
[HKCU\Software\Microsoft\Windows\CurrentVersion\Multimedia\MIDIMap]
"DriverList"="mmdrv.dll<0>:Active, a:Active, b:Active, c:Active, d:active,z:Active, e:Active"
[CCS\Control\MediaResources\MIDI\mmdrv.dll<0>]  "Driver"="a.drv"
[CCS\Control\MediaResources\MIDI\a]  "Driver"="a.drv"
[CCS\Control\MediaResources\MIDI\b]  "Driver"="b.drv"
[CCS\Control\MediaResources\MIDI\d]  "Driver"="d.drv"
[CCS\Control\MediaResources\MIDI\e]  "Driver"="a.drv"
[HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\drivers.desc]  "a.drv"="Port A"  "d.drv"="Port D"
)";

TEST_F(DeviceScanner, OldNtListsWhatTheSetUpLibraryDoesNotKnow) {
  const test::TestFolder drive;
  drive.Write("WINNT/system32/d.drv", test::Bytes({.strings = {{"CompanyName", "Acme"}}}));
  machine_.files.MountDrive('C', drive.path());
  const std::string all = kOldNtFallbacks;
  const std::string only_audstub =
      all + "[class 96c MEDIA]\n[device 96c S\\s\\1]\n\"Service\"=\"audstub\"\n";
  const struct {
    const host::WindowsVersion& version;
    std::string exports;
    const char* device_class;
    const char* expected;
  } rows[] = {
      {kNt4, all, "Net", "2: |Other||||0; Second|Maker||||0;"},
      {kNt351, all, "Net", "2: |Other||||0; Second|Maker||||0;"},
      {kWindows2000, all, "Net", "0:"},
      {kWindows98, all, "Net", "0:"},
      {kNt4, kNtDevices + all, "Net", "2: ||1234567890|||0; ||6-6-2001|1.2|255.255.255.255|256;"},
      {kNt4, "", "Net", "0:"},
      {kNt4, all, "MEDIA", "2: Port A||; Port D|Acme|;"},
      {kNt4, only_audstub, "MEDIA", "2: Port A||; Port D|Acme|;"},
      {kNt4, "", "MEDIA", "0:"},
      {kNt4, all, "Monitor", "0:"},
  };
  for (const auto& row : rows) {
    Become(row.version, row.exports);
    EXPECT_EQ(Scan(row.device_class), row.expected) << row.version.major << row.device_class;
  }
  // One that does not answer the question for the class knows none of it.
  Become(kNt4, kNtDevices + all);
  machine_.faults.FailNth("SetupDiClassGuidsFromNameA", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Scan("MEDIA"), "2: Port A||; Port D|Acme|;");
}

TEST(MidiDriverList, EntriesThatAreTaken) {
  const struct {
    const char* list;
    const char* expected;
  } rows[] = {
      {"", ""},
      {"a:Active", ""},
      {"a:Active,", "a;"},
      {"a:Active, ", "a;"},
      {"a:ACTIVE, b:active, c:Active", "a;b;"},
      {"a:Active,bc:Active,", "a;c;"},
      {"a:Active,b,cd:Active,", "a;d;"},
      {"a:Active,,:Active,", "a;;"},
      {"a:Inactive, b, c:Active , d: Active, e:Active:x, :Active, ", ";"},
      {"mmdrv.dll:Active, MMDRV.DLLx:Active, mmdrv.dl:Active, xmmdrv.dll:Active,",
       "mmdrv.dl;xmmdrv.dll;"},
  };
  for (const auto& row : rows) {
    std::string text = row.list;
    std::string taken;
    char* list = text.data();
    while (const char* const name = TakeActiveMidiDriver(list))
      taken += std::string(name) + ";";
    EXPECT_EQ(taken, row.expected) << row.list;
  }
}

constexpr char kNtComponents[] = R"(
[CCS\Control\Class\{0}]  "Class"="Net"
[CCS\Control\Class\{1}]
[CCS\Control\Class\{2}]  "Class"="NETCLIENT"
[CCS\Control\Class\{3}]  "Class"="NetClient"
[CCS\Control\Class\{4}]  "Class"="NetService"
[CCS\Control\Network\{2}\b]  "Description"="B"
[CCS\Control\Network\{2}\a]  "Description"="A"
[CCS\Control\Network\{2}\c]
[CCS\Control\Network\{3}\d]  "Description"="D"
)";
constexpr char kWindows98Components[] = R"(
[HKLM\Enum\Network\B\0000]  "Class"="NETCLIENT"  "MasterCopy"="Enum\\network\\b\\0000"
"DeviceDesc"="Client"
[HKLM\Enum\Network\B\0001]  "Class"="NetClient"  "MasterCopy"="Enum\\Network\\B\\0000"
"DeviceDesc"="Copy"
[HKLM\Enum\Network\A\0000]  "Class"="NetClient"  "MasterCopy"="Enum\\Network\\A\\0000"
[HKLM\Enum\Network\A\0001]  "Class"="NetClient"  "MasterCopy"="Enum\\Network\\A\\0001"
"DeviceDesc"="Other"
[HKLM\Enum\Network\A\0002]  "Class"="NetClient"  "DeviceDesc"="No master"
)";

TEST_F(DeviceScanner, NetworkComponentsNeedNoSetUpLibrary) {
  machine_.libraries.Remove("SETUPAPI.DLL");
  const struct {
    const host::WindowsVersion& version;
    const char* exports;
    const char* component_class;
    const char* expected;
  } rows[] = {
      {kWindows2000, kNtComponents, "netclient", "2: A; B;"},
      {kWindows2000, kNtComponents, "NetService", "0:"},
      {kWindows2000, kNtComponents, "Net", "-1:"},
      {kWindows2000, "", "NetClient", "-1:"},
      {kWindows98, kWindows98Components, "netCLIENT", "2: Client; Other;"},
      {kWindows98, kWindows98Components, "NetService", "0:"},
      {kWindows98, "", "NetService", "-1:"},
  };
  for (const auto& row : rows) {
    Become(row.version, row.exports);
    EXPECT_EQ(ListComponents(row.component_class), row.expected)
        << row.version.minor << row.component_class;
  }
}

TEST_F(DeviceScanner, FailingCalls) {
  Become(kWindows2000, kNtDevices);
  // Whichever block of memory is not to be had: what is counted is there, and nothing stays open.
  // The first block is the list's own.
  const unsigned before = machine_.faults.CallCount("HeapAlloc");
  EXPECT_EQ(Scan("Modem"), "2: ||6-6-2001|COM3; |||;");
  const unsigned calls = machine_.faults.CallCount("HeapAlloc") - before;
  for (unsigned nth = 1; nth <= calls; ++nth) {
    machine_.faults.FailNth("HeapAlloc", nth, ERROR_NOT_ENOUGH_MEMORY);
    const std::string scanned = Scan("Modem");
    const auto count = nth == 1 ? -1 : std::ranges::count(scanned, ';');
    EXPECT_EQ(std::to_string(count), scanned.substr(0, scanned.find(':'))) << nth;
  }
  // Of a class without an identifier there is no set to open.
  machine_.faults.FailAlways("SetupDiGetClassDevsA", ERROR_ACCESS_DENIED);
  EXPECT_EQ(Scan("Toaster"), "0:");
}

// The mask of each key's opening; a class of components is asked for where it is one.
TEST_F(DeviceScanner, KeysAreOpenedForNoMoreThanIsRead) {
  const std::string system = "SYSTEM\\CurrentControlSet\\";
  const std::string cards = "Software\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards";
  const struct {
    const host::WindowsVersion& version;
    const char* exports;
    const char* device_class;
    std::vector<std::string> keys;
    DWORD access;
  } rows[] = {
      {kWindows2000,
       kNtDevices,
       "Net",
       {system + "Enum\\N\\n\\With addresses", system + "Control\\Class\\m\\1",
        system + "Services\\{A}\\Parameters\\Tcpip"},
       1},
      {kNt4, kOldNtFallbacks, "Net", {cards, cards + "\\1"}, 0x20019},
      {kWindows2000,
       kNtComponents,
       "NetClient",
       {system + "Control\\Class", system + "Control\\Class\\{2}", system + "Control\\Network\\{2}",
        system + "Control\\Network\\{2}\\a"},
       0x20019},
      {kWindows98,
       kWindows98Components,
       "NetClient",
       {"Enum\\Network", "Enum\\Network\\A", "Enum\\Network\\A\\0001"},
       0x20019},
  };
  for (const auto& row : rows) {
    Become(row.version, row.exports);
    row.device_class == std::string("Net") ? Scan("Net") : ListComponents(row.device_class);
    const auto root = machine_.registry.Root(host::Hive::kLocalMachine);
    for (const std::string& key : row.keys)
      EXPECT_EQ(machine_.registry.Open(root, key, false)->last_access, row.access) << key;
  }
}

// An empty id would be the key above all devices.
TEST_F(DeviceScanner, DevicesWithAnEmptyIdAreLeftOut) {
  Become(kWindows2000, kNtDevices);
  const auto give_nothing = +[](HDEVINFO, PSP_DEVINFO_DATA, LPSTR, DWORD, PDWORD needed) -> BOOL {
    if (needed != nullptr) *needed = 9;
    return TRUE;
  };
  machine_.libraries.Add(
      {.name = "SETUPAPI.DLL",
       .exports = {{"SetupDiGetDeviceInstanceIdA", host::Export(give_nothing)}}});
  EXPECT_EQ(Scan("Modem"), "0:");
}

TEST_F(DeviceScanner, InstanceIdsOfAnyLength) {
  Become(kWindows2000, kNtDevices + ("[device 965 " + std::string(250, 'e') + "\\" +
                                     std::string(250, 'd') + "\\i]\n\"DeviceDesc\"=\"far\""));
  EXPECT_EQ(Scan("CDROM"), "2: |||D|2; far||||2;");
}

}  // namespace
}  // namespace hostscope
