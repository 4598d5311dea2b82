// The device scanner on machines of both families, whose registry is written in each row, and with
// platform calls failing.

#include "probes/devices/device_scanner.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/host/reg_file.h"
#include "probes/devices/old_nt_devices.h"
#include "tests/support/report_run.h"
#include "tests/support/test_folder.h"
#include "tests/support/versioned_file.h"
#include "util/text.h"

namespace hostscope {
namespace {

enum class System { kWindows98, kNt351, kNt4, kWindows2000 };

constexpr char kDrivers[] = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr char kServices[] = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\";
constexpr char kOldDrivers[] = "HKLM\\System\\CurrentControlSet\\Services\\Class\\";

std::string Key(const std::string& path, const std::string& values) {
  return "[" + path + "]\n" + values + "\n";
}

std::string ClassGuid(const std::string& digits) {
  return "{4D36E" + digits + "-E325-11CE-BFC1-08002BE10318}";
}

const std::string kNtClasses = [] {
  std::string keys;
  for (const auto& [digits, name] : {std::pair{"965", "CDROM"},
                                     {"96c", "MEDIA"},
                                     {"96d", "Modem"},
                                     {"96e", "Monitor"},
                                     {"972", "Net"},
                                     {"978", "Ports"}}) {
    keys += Key(kDrivers + ClassGuid(digits), std::string("\"Class\"=\"") + name + "\"");
  }
  return keys;
}();

// A present device of NT, and one of Windows 98.
std::string Device(const std::string& digits, const std::string& id, const std::string& values) {
  const std::string key = "HKLM\\SYSTEM\\CurrentControlSet\\Enum\\" + id;
  return Key(key, "\"ClassGUID\"=\"" + ClassGuid(digits) + "\"\n" + values) +
         Key(key + "\\Control", "");
}
std::string OldDevice(const std::string& device_class, const std::string& id,
                      const std::string& values) {
  return Key("HKLM\\Enum\\" + id, "\"Class\"=\"" + device_class + "\"\n" + values);
}

void AddRecord(std::string& text, const DeviceRecord& record, const std::string& extras) {
  text += std::string(" ") + record.name + "|" + record.manufacturer + "|" + record.driver_date +
          extras + ";";
}
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

  void Become(System system) {
    const host::WindowsVersion kVersions[] = {
        {4, 10, 0x040A08AE, 1}, {3, 51, 1057}, {4, 0, 1381}, {5, 0, 2195}};
    machine_.version = kVersions[static_cast<int>(system)];
    machine_.registry.RemoveKey("HKLM\\SYSTEM");
    machine_.registry.RemoveKey("HKLM\\SOFTWARE");
    machine_.registry.RemoveKey("HKLM\\Enum");
    if (system != System::kWindows98) State(kNtClasses);
  }
  void State(const std::string& exports) {
    const auto error = host::ReadRegText("REGEDIT4\n" + exports, machine_.registry);
    EXPECT_FALSE(error) << error->line << ": " << error->reason;
  }

  // The count, then the records; nothing may stay open.
  template <typename Record>
  std::string ScanFor(const char* class_name) {
    const auto open_before = machine_.handles.OpenObjects();
    std::string text;
    {
      const ProbeContext context;
      RecordArray records;
      records.Create(sizeof(Record));
      text = std::to_string(ScanDeviceClass(context, class_name, records)) + ":";
      for (int i = 0; i < records.count(); ++i)
        AddRecord(text, *records.GetAs<Record>(i), Extras(*records.GetAs<Record>(i)));
    }
    EXPECT_EQ(machine_.handles.OpenObjects(), open_before) << class_name;
    return text;
  }
  std::string Scan(const std::string& name) {
    if (name == "CDROM") return ScanFor<CdromRecord>("cdrom");
    if (name == "Net") return ScanFor<NetCardRecord>("NET");
    if (name == "Modem") return ScanFor<ModemRecord>("modem");
    if (name == "Ports") return ScanFor<PortRecord>("PORTS");
    return ScanFor<DeviceRecord>(name.c_str());
  }
  std::string ListComponents(const char* class_name) {
    const auto open_before = machine_.handles.OpenObjects();
    std::string text;
    {
      const ProbeContext context;
      StringList names;
      names.Create();
      text = std::to_string(ScanDeviceClass(context, class_name, names)) + ":";
      for (int i = 0; i < names.count(); ++i)
        text += std::string(" ") + names.Get(i) + ";";
    }
    EXPECT_EQ(machine_.handles.OpenObjects(), open_before) << class_name;
    return text;
  }

  host::Machine machine_;
  host::UseMachine use_;
};

struct Row {
  const char* what;
  System system;
  const char* device_class;
  std::string exports;
  std::string expected;
};

TEST_F(DeviceScanner, Records) {
  const std::string long_text(300, 'n');
  const std::string adapter =
      Device("972", "PCI\\CARD\\1", R"("Driver"="{n}\\0001")") +
      Key(kDrivers + std::string("{n}\\0001"), "\"NetCfgInstanceId\"=\"{A}\"");
  const std::string addresses = kServices + std::string("{A}\\Parameters\\Tcpip");
  const Row rows[] = {
      {"no devices", System::kWindows2000, "Monitor", "", "0:"},
      {"unknown class", System::kWindows2000, "Toaster", "", "0:"},
      {"a class of components", System::kWindows2000, "netclient", "", "-1:"},
      {"both names, everything there", System::kWindows2000, "mONITOR",
       Device("96E", "DISPLAY\\B\\1",
              R"("FriendlyName"="Big"
                 "DeviceDesc"="Screen"
                 "Mfg"="Maker"
                 "Driver"="{m}\\0000")") +
           Key(kDrivers + std::string("{m}\\0000"), R"("DriverDate"="6-6-2001")") +
           Device("96e", "DISPLAY\\A\\1", R"("DeviceDesc"="Small")"),
       "2: Small||; Big|Maker|6-6-2001;"},
      {"no values, no driver key, not present", System::kWindows2000, "Monitor",
       Device("96e", "A\\B\\1", "") + Device("96e", "A\\B\\2", R"("Driver"="none")") +
           Key("HKLM\\SYSTEM\\CurrentControlSet\\Enum\\A\\B\\3",
               "\"ClassGUID\"=\"" + ClassGuid("96E") + "\""),
       "2: ||; ||;"},
      {"empty values are absent, an empty text is not", System::kWindows2000, "Monitor",
       Device("96e", "A\\B\\1", R"("FriendlyName"=hex:
                                   "DeviceDesc"="d"
                                   "Mfg"=hex(1):)") +
           Device("96e", "A\\B\\2", R"("FriendlyName"=""
                                       "DeviceDesc"="d")"),
       "2: d||; ||;"},
      {"types, terminators and lengths", System::kWindows2000, "Monitor",
       Device("96e", "A\\B\\1",
              "\"FriendlyName\"=\"" + long_text + "\"\n\"Mfg\"=hex:41,42\n" +
                  R"("Driver"=hex:7b,6d,7d)") +
           Key(kDrivers + std::string("{m}"), R"("DriverDate"="12345678901")") +
           Device("96e", "A\\B\\2", R"("FriendlyName"=hex(7):61,00,62,00,00
                                       "Mfg"=dword:00004443)"),
       "2: " + std::string(255, 'n') + "|AB|1234567890; a|CD|;"},
      {"CD-ROM of NT", System::kWindows2000, "CDROM",
       Device("965", "IDE\\CD\\1", R"("CurrentDriveLetterAssignment"="D"
                                      "AutoInsertNotification"=hex:09)") +
           Key(std::string(kServices) + "Cdrom", R"("Autorun"=dword:00000101)"),
       "1: |||D|1;"},
      {"CD-ROM of Windows 98", System::kWindows98, "CDROM",
       OldDevice("CDROM", "SCSI\\CD\\1", R"("CurrentDriveLetterAssignment"="DE"
                                            "AutoInsertNotification"=hex:02)") +
           OldDevice("cdrom", "SCSI\\CD\\0",
                     "\"CurrentDriveLetterAssignment\"=\"" + long_text + "\"") +
           Key(std::string(kServices) + "Cdrom", R"("Autorun"=dword:1)"),
       "2: |||DE|2; |||" + std::string(25, 'n') + "|0;"},
      {"card without an instance id", System::kWindows2000, "Net",
       Device("972", "PCI\\CARD\\1", ""), "0:"},
      {"card without addresses", System::kWindows2000, "Net", adapter, "0:"},
      {"card with addresses", System::kWindows2000, "Net",
       adapter + Key(addresses, R"("EnableDHCP"=dword:00000100
             "IPAddress"=hex(7):31,2e,32,00,33,2e,34,00,00
             "SubnetMask"="255.255.255.255.255")"),
       "1: |||1.2|255.255.255.255|256;"},
      {"card with the key alone", System::kWindows2000, "Net",
       adapter + Key(addresses, R"("EnableDHCP"=hex:01)"), "1: |||||0;"},
      {"card of Windows 98", System::kWindows98, "Net",
       OldDevice("Net", "PCI\\CARD\\1", R"("Driver"="Net\\0000")") +
           Key(std::string(kOldDrivers) + "Net\\0000", R"("DriverDate"="1-1-1999")"),
       "1: ||1-1-1999|||0;"},
      {"modem", System::kWindows2000, "Modem",
       Device("96d", "A\\M\\1", R"("Driver"="{o}\\0000")") +
           Key(kDrivers + std::string("{o}\\0000"), R"("AttachedTo"="COM3")") +
           Device("96d", "A\\M\\2", R"("AttachedTo"="COM4")"),
       "2: |||COM3; |||;"},
      {"ports of NT", System::kWindows2000, "Ports",
       Device("978", "A\\P\\1", R"("PORTNAME"="COM1")") + Device("978", "A\\P\\2", "") +
           Key("HKLM\\SYSTEM\\CurrentControlSet\\Enum\\A\\P\\2\\Device Parameters",
               R"("PortName"="LPT1")"),
       "2: |||; |||LPT1;"},
      {"port of Windows 98", System::kWindows98, "Ports",
       OldDevice("Ports", "A\\P\\1", R"("PORTNAME"="COM1")"), "1: |||COM1;"},
      {"media device of the system's own", System::kWindows2000, "Media",
       Device("96c", "A\\S\\1", R"("Service"="audstub")") +
           Device("96c", "A\\S\\2", R"("DeviceDesc"="Sound"
                                       "Service"="audstub2")"),
       "1: Sound||;"},
      {"the service counts for media only", System::kWindows2000, "Monitor",
       Device("96e", "A\\S\\1", R"("Service"="audstub")"), "1: ||;"},
  };
  for (const Row& row : rows) {
    Become(row.system);
    State(row.exports);
    EXPECT_EQ(Scan(row.device_class), row.expected) << row.what;
  }
}

TEST_F(DeviceScanner, OldNtListsWhatTheSetUpLibraryDoesNotKnow) {
  const std::string cards = "HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards";
  const std::string exports =
      Key(cards + "\\2", R"("Description"="Second"
                            "Manufacturer"="Maker"
                            "ServiceName"="x")") +
      Key(cards + "\\1", R"("Manufacturer"="Other")") +
      Key("HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Multimedia\\MIDIMap",
          R"("DriverList"="mmdrv.dll<0>:Active, a:Active, b:Active, c:Active, d:active,z:Active, e:Active")") +
      [] {
        std::string keys;
        for (const char* const name : {"a", "b", "d", "e", "mmdrv.dll<0>"})
          keys +=
              Key(std::string("HKLM\\SYSTEM\\CurrentControlSet\\Control\\MediaResources\\MIDI\\") +
                      name,
                  std::string("\"Driver\"=\"") + name[0] + ".drv\"");
        return keys;
      }() +
      Key("HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\drivers.desc",
          R"("a.drv"="Port A"
             "d.drv"="Port D"
             "m.drv"="System"
             "e.drv"="Port E")");
  test::VersionedFile file;
  file.strings = {{"CompanyName", "Acme"}};
  const test::TestFolder drive;
  drive.Write("WINNT/system32/d.drv", test::Bytes(file));
  machine_.files.MountDrive('C', drive.path());
  const Row rows[] = {
      {"", System::kNt4, "Net", exports, "2: |Other||||0; Second|Maker||||0;"},
      {"", System::kNt351, "Net", exports, "2: |Other||||0; Second|Maker||||0;"},
      {"", System::kWindows2000, "Net", exports, "0:"},
      {"", System::kWindows98, "Net", exports, "0:"},
      {"a card found", System::kWindows98, "Net", OldDevice("Net", "A\\B\\1", "") + exports,
       "1: |||||0;"},
      {"no key", System::kNt4, "Net", "", "0:"},
      {"", System::kNt4, "MEDIA", exports, "2: Port A||; Port D|Acme|;"},
      {"a device found", System::kNt4, "MEDIA", Device("96c", "A\\B\\1", "") + exports, "1: ||;"},
      {"all left out", System::kNt4, "MEDIA",
       Device("96c", "A\\B\\1", R"("Service"="audstub")") + exports, "2: Port A||; Port D|Acme|;"},
      {"", System::kWindows2000, "MEDIA", exports, "0:"},
      {"no list", System::kNt4, "MEDIA", "[-HKCU\\Software\\Microsoft]", "0:"},
      {"another class", System::kNt4, "Monitor", exports, "0:"},
  };
  for (const Row& row : rows) {
    Become(row.system);
    State(row.exports);
    EXPECT_EQ(Scan(row.device_class), row.expected)
        << row.what << " " << row.device_class << " " << static_cast<int>(row.system);
  }
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
      {"a:ACTIVE, b:Active", "a;"},
      {"a:Active, b:active, c:Active,", "a;b;c;"},
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

TEST_F(DeviceScanner, NetworkComponents) {
  const std::string network = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Network\\";
  const std::string classes = Key(kDrivers + std::string("{0}"), R"("Class"="Net")") +
                              Key(kDrivers + std::string("{1}"), "") +
                              Key(kDrivers + std::string("{2}"), R"("Class"="NETCLIENT")") +
                              Key(kDrivers + std::string("{3}"), R"("Class"="NetClient")");
  const auto old = [](const std::string& key, const std::string& master,
                      const std::string& component_class, const std::string& name) {
    return Key("HKLM\\Enum\\Network\\" + key, "\"MasterCopy\"=\"Enum\\\\Network\\\\" + master +
                                                  "\"\n\"Class\"=\"" + component_class + "\"\n" +
                                                  name);
  };
  const std::string named = R"("DeviceDesc"="Client")";
  const Row rows[] = {
      {"no class", System::kWindows2000, "NetClient", "", "-1:"},
      {"no components", System::kWindows2000, "NetClient", classes, "0:"},
      {"the first class of the name", System::kWindows2000, "netclient",
       classes + Key(network + "{2}\\b", R"("Description"="B")") +
           Key(network + "{2}\\a", R"("Description"="A")") + Key(network + "{2}\\c", "") +
           Key(network + "{3}\\d", R"("Description"="D")"),
       "2: A; B;"},
      {"a class of devices", System::kWindows2000, "Net", classes, "-1:"},
      {"no key", System::kWindows98, "NetService", "", "-1:"},
      {"nothing of the class", System::kWindows98, "NetService",
       old("A\\0000", "A\\\\0000", "NetClient", named), "0:"},
      {"masters only", System::kWindows98, "NetClient",
       old("B\\0000", "b\\\\0000", "NETCLIENT", named) +
           old("B\\0001", "B\\\\0000", "NetClient", named) +
           old("A\\0000", "A\\\\0000", "NetClient", "") +
           old("A\\0001", "A\\\\0001", "NetClient", R"("DeviceDesc"="Other")") +
           Key("HKLM\\Enum\\Network\\C\\0000", "\"Class\"=\"NetClient\"\n" + named),
       "2: Client; Other;"},
  };
  for (const Row& row : rows) {
    Become(row.system);
    State(row.exports);
    for (const bool has_setup_library : {true, false}) {
      if (!has_setup_library) machine_.faults.FailNth("LoadLibraryA", 1, ERROR_MOD_NOT_FOUND);
      EXPECT_EQ(ListComponents(row.device_class), row.expected) << row.what;
    }
  }
}

// One device of two shows nothing of itself; the other one is listed.
TEST_F(DeviceScanner, FailingCalls) {
  const struct {
    const char* call;
    unsigned nth;
    const char* expected;
  } rows[] = {
      {"LoadLibraryA", 1, "-1:"},
      {"GetProcAddress", 5, "-1:"},
      {"SetupDiClassGuidsFromNameA", 1, "-1:"},
      {"SetupDiGetClassDevsA", 1, "-1:"},
      {"SetupDiEnumDeviceInfo", 1, "0:"},
      {"SetupDiEnumDeviceInfo", 2, "1: a|m|1-1-1999;"},
      {"SetupDiGetDeviceInstanceIdA", 1, "1: b|m|1-1-1999;"},
      {"SetupDiGetDeviceInstanceIdA", 2, "1: b|m|1-1-1999;"},
      {"RegOpenKeyExA", 1, "1: b|m|1-1-1999;"},
      {"RegOpenKeyExA", 2, "2: a|m|; b|m|1-1-1999;"},
      {"RegQueryValueExA", 1, "2: a|m|; b|m|1-1-1999;"},
      {"GetVersionExA", 1, "0:"},  // taken for Windows 98, whose keys are others
  };
  Become(System::kWindows2000);
  const std::string values = R"("Mfg"="m"
                                "Driver"="{m}"
                                "DeviceDesc"=)";
  State(Device("96e", "A\\B\\1", values + "\"a\"") + Device("96e", "A\\B\\2", values + "\"b\"") +
        Key(kDrivers + std::string("{m}"), R"("DriverDate"="1-1-1999")"));
  for (const auto& row : rows) {
    machine_.faults.FailNth(row.call, row.nth, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Scan("Monitor"), row.expected) << row.call << " " << row.nth;
  }
  // Whichever block of memory is not to be had, nothing breaks and nothing stays.
  const unsigned before = machine_.faults.CallCount("HeapAlloc");
  EXPECT_EQ(Scan("Monitor"), "2: a|m|1-1-1999; b|m|1-1-1999;");
  const unsigned calls = machine_.faults.CallCount("HeapAlloc") - before;
  for (unsigned nth = 1; nth <= calls; ++nth) {
    machine_.faults.FailNth("HeapAlloc", nth, ERROR_NOT_ENOUGH_MEMORY);
    const std::string scanned = Scan("Monitor");
    EXPECT_EQ(std::to_string(std::ranges::count(scanned, ';')), scanned.substr(0, 1)) << nth;
  }
  machine_.registry.DenyAccess("HKLM\\SYSTEM\\CurrentControlSet\\Enum\\A\\B\\1");
  EXPECT_EQ(Scan("Monitor"), "1: b|m|1-1-1999;");
}

TEST_F(DeviceScanner, InstanceIdsOfAnyLength) {
  Become(System::kWindows2000);
  const std::string id = std::string(250, 'e') + "\\" + std::string(250, 'd') + "\\i";
  State(Device("96e", id, R"("DeviceDesc"="far")"));
  EXPECT_EQ(Scan("Monitor"), "1: far||;");
}

}  // namespace
}  // namespace hostscope
