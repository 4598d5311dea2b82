#include "probes/devices/device_scanner.h"

#include "probes/devices/device_info_set.h"
#include "probes/devices/network_components.h"
#include "probes/devices/old_nt_devices.h"
#include "probes/devices/registry_roots.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr std::int32_t kCannotBeExamined = -1;

// A present device: its own key, and that of its driver where it has one.
struct Device {
  bool is_nt;
  RegistryKey key;
  RegistryKey driver_key;

  RegistryValue Value(const char* name) const { return ReadRegistryValue(key.get(), name); }
  RegistryValue DriverValue(const char* name) const {
    // Without an open key the system would be asked for the value of no key at all.
    return driver_key.open() ? ReadRegistryValue(driver_key.get(), name) : RegistryValue();
  }
};

void ReadCommonValues(const Device& device, DeviceRecord& record) {
  RegistryValue name = device.Value("FriendlyName");
  if (!name.present()) name = device.Value("DeviceDesc");
  name.CopyTextTo(record.name);
  device.Value("Mfg").CopyTextTo(record.manufacturer);
  device.DriverValue("DriverDate").CopyTextTo(record.driver_date);
}

// This and the functions like it read what a class adds to the common values. False for a device
// that is left out.
bool ReadPlainDevice(const Device&, DeviceRecord&) {
  return true;
}

bool ReadMediaDevice(const Device& device, DeviceRecord&) {
  // The system's own helper for sound, which is no hardware.
  return !SameText(device.Value("Service").AsText().c_str(), "audstub");
}

bool ReadCdrom(const Device& device, CdromRecord& record) {
  device.Value("CurrentDriveLetterAssignment").CopyTextTo(record.drive_letters);
  const RegistryValue autorun =
      device.is_nt ? ReadRegistryValue(HKEY_LOCAL_MACHINE,
                                       "SYSTEM\\CurrentControlSet\\Services\\Cdrom", "Autorun")
                   : device.Value("AutoInsertNotification");
  if (autorun.present()) record.autorun = static_cast<std::uint8_t>(autorun.data.data()[0]);
  return true;
}

bool ReadNetCard(const Device& device, NetCardRecord& record) {
  // On NT, adapters without addresses of their own are the system's, not cards.
  const bool listed_without_addresses = !device.is_nt;
  const OwnedText id = device.DriverValue("NetCfgInstanceId").AsText();
  if (!id.present()) return listed_without_addresses;
  const RegistryKey addresses = OpenMachineKey(
      {"SYSTEM\\CurrentControlSet\\Services", id.c_str(), "Parameters\\Tcpip"}, KEY_QUERY_VALUE);
  if (!addresses.open()) return listed_without_addresses;
  record.dhcp_enabled = ReadRegistryValue(addresses.get(), "EnableDHCP").FirstNumber();
  ReadRegistryValue(addresses.get(), "IPAddress").CopyTextTo(record.ip_address);
  ReadRegistryValue(addresses.get(), "SubnetMask").CopyTextTo(record.subnet_mask);
  return true;
}

bool ReadModem(const Device& device, ModemRecord& record) {
  device.DriverValue("AttachedTo").CopyTextTo(record.attached_to);
  return true;
}

bool ReadPort(const Device& device, PortRecord& record) {
  const RegistryValue name =
      device.is_nt ? ReadRegistryValue(device.key.get(), "Device Parameters", "PortName")
                   : device.Value("PORTNAME");
  name.CopyTextTo(record.port_name);
  return true;
}

// Appends the device's record; false when it is left out, and when there is no memory.
template <typename Record, bool (*kReadExtras)(const Device&, Record&)>
bool AppendDevice(const Device& device, RecordArray& records) {
  Record record = {};
  ReadCommonValues(device, record);
  return kReadExtras(device, record) && records.Append(&record) >= 0;
}

struct DeviceClass {
  const char* name;
  bool (*append)(const Device& device, RecordArray& records);
  // Lists the devices where NT 3.51 and 4.0 show none.
  std::int32_t (*list_on_old_nt)(RecordArray& records) = nullptr;
};

constexpr DeviceClass kClassesOfTheirOwn[] = {
    {"CDROM", AppendDevice<CdromRecord, ReadCdrom>},
    {"Net", AppendDevice<NetCardRecord, ReadNetCard>, ListNtNetworkCards},
    {"Modem", AppendDevice<ModemRecord, ReadModem>},
    {"Ports", AppendDevice<PortRecord, ReadPort>},
    {"MEDIA", AppendDevice<DeviceRecord, ReadMediaDevice>, ListNtMidiDrivers},
};
constexpr DeviceClass kAnyOtherClass = {nullptr, AppendDevice<DeviceRecord, ReadPlainDevice>};

const DeviceClass& ClassNamed(const char* name) {
  for (const DeviceClass& row : kClassesOfTheirOwn) {
    if (SameTextIgnoringCase(row.name, name)) return row;
  }
  return kAnyOtherClass;
}

// A device whose key cannot be opened has none open.
Device OpenDevice(const ProbeContext& context, const char* instance_id) {
  const RegistryRoots& roots = RootsOf(context);
  Device device = {.is_nt = context.is_nt(),
                   .key = OpenMachineKey({roots.devices, instance_id}, KEY_QUERY_VALUE),
                   .driver_key = {}};
  if (!device.key.open()) return device;
  const OwnedText driver = device.Value("Driver").AsText();
  if (driver.present())
    device.driver_key = OpenMachineKey({roots.drivers, driver.c_str()}, KEY_QUERY_VALUE);
  return device;
}

std::int32_t ListPresentDevices(const ProbeContext& context, const char* class_name,
                                const DeviceClass& device_class, RecordArray& records) {
  GUID identifier = {};
  if (!FindDeviceClass(context, class_name, identifier)) return 0;
  DeviceInfoSet devices(context, identifier);
  if (!devices.open()) return kCannotBeExamined;
  std::int32_t count = 0;
  while (devices.Next()) {
    const OwnedText instance_id = devices.InstanceId();
    if (!instance_id.present()) continue;
    const Device device = OpenDevice(context, instance_id.c_str());
    if (device.key.open() && device_class.append(device, records)) ++count;
  }
  return count;
}

}  // namespace

std::int32_t ScanDeviceClass(const ProbeContext& context, const char* class_name,
                             RecordArray& records) {
  if (IsNetworkComponentClass(class_name) || !context.has_setup_api()) return kCannotBeExamined;
  const DeviceClass& device_class = ClassNamed(class_name);
  std::int32_t count = ListPresentDevices(context, class_name, device_class, records);
  if (count == 0 && device_class.list_on_old_nt != nullptr && IsNt351Or40())
    count = device_class.list_on_old_nt(records);
  return records.complete() ? count : kCannotBeExamined;
}

std::int32_t ScanDeviceClass(const ProbeContext& context, const char* class_name,
                             StringList& descriptions) {
  if (!IsNetworkComponentClass(class_name)) return kCannotBeExamined;
  const std::int32_t count = ListNetworkComponents(context, class_name, descriptions);
  return descriptions.complete() ? count : kCannotBeExamined;
}

}  // namespace hostscope
