// Lists of devices in all seven releases: devices that the test makes below the keys of both
// families, of classes that the system has none of. Its own are in the kept whole report.

#include <windows.h>

#include <list>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

using namespace std::string_literals;

constexpr char kNtDevices[] = "SYSTEM\\CurrentControlSet\\Enum\\";
constexpr char kNtClasses[] = "SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr char kOldDevices[] = "Enum\\";
constexpr char kOldClasses[] = "System\\CurrentControlSet\\Services\\Class\\";

struct List {
  std::string section, key, name, device_class, guid;
  std::string nt_lines, old_lines;  // of the further fields
};
const List kLists[] = {
    {"MULTIMEDIA", "CDROMs", "CDROM", "CDROM", "{4D36E965-E325-11CE-BFC1-08002BE10318}",
     FieldLine("", "Autorun", "No"),
     FieldLine("", "Autorun", "Yes") + FieldLine("", "Drive letters", "DE")},
    {"COMMUNICATION", "Modems", "Modems", "Modem", "{4d36e96d-e325-11ce-bfc1-08002be10318}",
     FieldLine("", "Port", "NTCOM3"), FieldLine("", "Port", "98COM3")},
    {"PORT", "Ports", "Ports", "Ports", "{4d36e978-e325-11ce-bfc1-08002be10318}",
     FieldLine("", "Port name", "NTCOM1"), FieldLine("", "Port name", "98COM1")},
};

// A device of each list with everything, its texts telling the families apart. Wine enumerates by
// the keys of NT in every release; Windows 95/98/Me reads its own. They go with the object.
class SeededDevices {
 public:
  SeededDevices() {
    for (const auto& [classes, family] : {std::pair{kNtClasses, "NT"}, {kOldClasses, "98"}})
      PutTexts(classes + "HSTEST\\0000"s,
               {{"DriverDate", family + " 12-24-2001"s}, {"AttachedTo", family + "COM3"s}});
    for (const List& list : kLists) {
      const std::string id = "HSTEST\\USUAL\\" + list.device_class;
      for (const auto& [devices, family] : {std::pair{kNtDevices, "NT"}, {kOldDevices, "98"}})
        PutTexts(devices + id, {{"FriendlyName", family + " "s + list.name + " \xE4"},
                                {"DeviceDesc", "not this"},
                                {"Mfg", family + " Maker"s},
                                {"Driver", "HSTEST\\0000"}});
      PutTexts(kNtDevices + id, {{"ClassGUID", list.guid}});
      PutTexts(kNtDevices + id + "\\Device Parameters", {{"PortName", "NTCOM1"}});
      PutTexts(kOldDevices + id, {{"PORTNAME", "98COM1"},
                                  {"CurrentDriveLetterAssignment", "DE"},
                                  {"AutoInsertNotification", "\x01"}});
      class_names_.emplace_back(HKEY_LOCAL_MACHINE, kNtClasses + list.guid, "Class", REG_SZ,
                                list.device_class + "\0"s);
    }
  }
  ~SeededDevices() {
    for (const char* const root : {kNtDevices, kNtClasses, kOldDevices, kOldClasses})
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, (root + "HSTEST"s).c_str());
  }

 private:
  std::list<RegistryValue> class_names_;
};

class DevicesOnEveryRelease : public EveryRelease {};

TEST_P(DevicesOnEveryRelease, AreTheTests) {
  const SeededDevices seeded;
  const bool is_nt = GetParam().has_tokens;
  const std::string family = is_nt ? "NT " : "98 ";
  std::string profile;
  for (const List& list : kLists)
    profile += "[" + list.section + "]\r\n" + list.key + "=1\r\n";
  const Folder folder;
  const std::string report = ReportOf(folder, profile);
  for (const List& list : kLists) {
    const std::string text =
        "\r\n" + FieldLine(list.name + " (total 1)", "Description", family + list.name + " \xE4") +
        FieldLine("", "Manufacturer", family + "Maker") +
        FieldLine("", "Driver date", family + "12-24-2") +
        (is_nt ? list.nt_lines : list.old_lines) + "\r\n";
    EXPECT_NE(report.find(text), std::string::npos) << text << "in\n" << report;
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, DevicesOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
