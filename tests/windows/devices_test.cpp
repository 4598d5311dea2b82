// The lists of devices in all seven releases: the system's own devices, which the test finds by
// other calls, and devices that it makes below the keys of both families.

#include <windows.h>
// Needs the line above.
#include <setupapi.h>

#include <list>
#include <map>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

using namespace std::string_literals;

struct List {
  const char* section;
  const char* key;
  const char* name;
  const char* device_class;
  const char* guid;
  const char* extra = nullptr;
};
constexpr List kLists[] = {
    {"MULTIMEDIA", "MediaDevices", "Media devices", "MEDIA",
     "{4d36e96c-e325-11ce-bfc1-08002be10318}"},
    {"DISPLAY", "Monitors", "Monitors", "Monitor", "{4d36e96e-e325-11ce-bfc1-08002be10318}"},
    {"DISPLAY", "VideoAdapters", "Video adapters", "Display",
     "{4d36e968-e325-11ce-bfc1-08002be10318}"},
    {"INPUT", "Mouse", "Mouse", "Mouse", "{4d36e96f-e325-11ce-bfc1-08002be10318}"},
    {"INPUT", "Keyboard", "Keyboard", "Keyboard", "{4d36e96b-e325-11ce-bfc1-08002be10318}"},
    {"COMMUNICATION", "Modems", "Modems", "Modem", "{4d36e96d-e325-11ce-bfc1-08002be10318}",
     "Port"},
    {"PORT", "Ports", "Ports", "Ports", "{4d36e978-e325-11ce-bfc1-08002be10318}", "Port name"},
    {"DISK CONTROLLER", "FDC", "FDC", "fdc", "{4d36e969-e325-11ce-bfc1-08002be10318}"},
    {"DISK CONTROLLER", "HDC", "HDC", "hdc", "{4d36e96a-e325-11ce-bfc1-08002be10318}"},
    {"DISK CONTROLLER", "SCSI", "SCSI", "SCSIAdapter", "{4d36e97b-e325-11ce-bfc1-08002be10318}"},
    {"USB", "Controllers", "USB", "USB", "{36fc9e60-c465-11cf-8056-444553540000}"},
};

constexpr char kNtDevices[] = "SYSTEM\\CurrentControlSet\\Enum";
constexpr char kNtClasses[] = "SYSTEM\\CurrentControlSet\\Control\\Class";
constexpr char kOldDevices[] = "Enum";
constexpr char kOldClasses[] = "System\\CurrentControlSet\\Services\\Class";

// What the report must show of a device.
struct Shown {
  std::string name, manufacturer, date, extra;
};
using ShownDevices = std::map<std::string, Shown>;  // by instance id

// The devices of the test. They go with the object.
class SeededDevices {
 public:
  explicit SeededDevices(bool is_nt) : is_nt_(is_nt) {
    for (const auto& [classes, family] : {std::pair{kNtClasses, "NT"}, {kOldClasses, "98"}})
      PutTexts(classes + "\\HSTEST\\0000"s,
               {{"DriverDate", family + " 12-24-2001"s}, {"AttachedTo", family + "COM3"s}});
    for (const List& list : kLists) {
      AddUsual(list);
      class_names_.emplace_back(HKEY_LOCAL_MACHINE, kNtClasses + "\\"s + list.guid, "Class", REG_SZ,
                                list.device_class + "\0"s);
    }
  }
  ~SeededDevices() {
    for (const char* const root : {kNtDevices, kNtClasses, kOldDevices, kOldClasses})
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, (root + "\\HSTEST"s).c_str());
  }
  const ShownDevices& shown() const { return shown_; }

 private:
  // A device with everything, its texts telling the families apart.
  void AddUsual(const List& list) {
    std::string id = "HSTEST\\USUAL\\"s + list.device_class;
    const std::string port = list.key == "Ports"s ? "COM1" : "";
    for (const auto& [devices, family] : {std::pair{kNtDevices, "NT "}, {kOldDevices, "98 "}})
      PutTexts(devices + ("\\" + id), {{"FriendlyName", family + std::string(list.name) + " \xE4"},
                                       {"DeviceDesc", "not this"},
                                       {"Mfg", family + "Maker"s},
                                       {"Driver", "HSTEST\\0000"}});
    PutTexts(kNtDevices + ("\\" + id), {{"ClassGUID", list.guid}});
    PutTexts(kNtDevices + ("\\" + id) + "\\Device Parameters", {{"PortName", "NT" + port}});
    PutTexts(kOldDevices + ("\\" + id), {{"PORTNAME", "98" + port}});
    const std::string family = is_nt_ ? "NT" : "98";
    CharUpperA(id.data());  // as the system gives it
    shown_[id] = {family + " " + list.name + " \xE4", family + " Maker", family + " 12-24-2",
                  family + (list.key == "Modems"s ? "COM3" : port)};
  }

  bool is_nt_;
  std::list<RegistryValue> class_names_;
  ShownDevices shown_;
};

// Every device of the class, in the system's order, by the 16-bit functions.
std::vector<Shown> DevicesOf(const List& list, bool is_nt, const ShownDevices& seeded) {
  std::vector<Shown> found;
  const HDEVINFO set =
      SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
  SP_DEVINFO_DATA device = {.cbSize = sizeof device};
  const auto property = [&](DWORD number) {
    wchar_t text[512] = {};
    SetupDiGetDeviceRegistryPropertyW(set, &device, number, nullptr, reinterpret_cast<BYTE*>(text),
                                      sizeof text, nullptr);
    return Narrow(text);
  };
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    if (lstrcmpiA(property(SPDRP_CLASSGUID).c_str(), list.guid) != 0) continue;
    wchar_t id[512] = {};
    SetupDiGetDeviceInstanceIdW(set, &device, id, 512, nullptr);
    const auto known = seeded.find(Narrow(id));
    if (known != seeded.end()) {
      found.push_back(known->second);
    } else if (is_nt) {  // Wine has the keys of its own devices in the places of NT only
      const std::string name = property(SPDRP_FRIENDLYNAME);
      char date[512] = {};
      DWORD size = sizeof date;
      RegGetValueA(HKEY_LOCAL_MACHINE, (kNtClasses + ("\\" + property(SPDRP_DRIVER))).c_str(),
                   "DriverDate", RRF_RT_REG_SZ, nullptr, date, &size);
      found.push_back({name.empty() ? property(SPDRP_DEVICEDESC) : name, property(SPDRP_MFG),
                       std::string(date).substr(0, 10)});
    }
  }
  SetupDiDestroyDeviceInfoList(set);
  return found;
}

std::string TextOf(const List& list, const std::vector<Shown>& devices) {
  std::string label = list.name + " (total "s + std::to_string(devices.size()) + ")";
  std::string text;
  for (const Shown& device : devices) {
    text += FieldLine(label, "Description", device.name) +
            FieldLine("", "Manufacturer", device.manufacturer) +
            FieldLine("", "Driver date", device.date);
    if (list.extra != nullptr) text += FieldLine("", list.extra, device.extra);
    text += "\r\n";
    label.clear();
  }
  return devices.empty() ? label + "\r\n" : text;
}

// The report with all lists on, each of which must be there.
std::string ReportOfLists() {
  std::string profile;
  std::vector<std::string> expected;
  for (const List& list : kLists) {
    const std::string header = "["s + list.section + "]\r\n";
    if (profile.find(header) == std::string::npos) profile += header;
    profile += list.key + "=1\r\n"s;
    expected.push_back(ProgressLine((list.name + "..."s).c_str(), "Ok"));
  }
  const Folder folder;
  std::vector<std::string> lines;
  const std::string report = ReportOf(folder, profile, {}, &lines);
  lines.resize(expected.size());
  EXPECT_EQ(lines, expected);
  return report;
}

class DevicesOnEveryRelease : public EveryRelease {};

TEST_P(DevicesOnEveryRelease, AreTheSystemsAndTheTests) {
  const bool is_nt = GetParam().has_tokens;
  const SeededDevices seeded(is_nt);
  const std::string report = ReportOfLists();
  for (const List& list : kLists) {
    const std::string text = TextOf(list, DevicesOf(list, is_nt, seeded.shown()));
    EXPECT_NE(report.find("\r\n" + text), std::string::npos) << text << "in\n" << report;
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, DevicesOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
