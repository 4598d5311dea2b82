// The items that list the devices of one class.
#pragma once

#include <cstddef>

#include "probes/devices/device_scanner.h"
#include "probes/devices/record_list.h"
#include "report/item.h"

namespace hostscope {

struct DeviceList {
  const char* list_name;
  const char* class_name;
  std::size_t record_size;
  // Writes the lines that a device of the class has beside those of every device. Null: there are
  // none.
  void (*write_further)(ReportWriter& report, const DeviceRecord& device) = nullptr;
};

extern const DeviceList kMediaDevices;
extern const DeviceList kMonitors;
extern const DeviceList kVideoAdapters;
extern const DeviceList kMouse;
extern const DeviceList kKeyboard;
extern const DeviceList kNetCards;
extern const DeviceList kModems;
extern const DeviceList kPorts;
extern const DeviceList kFloppyControllers;
extern const DeviceList kDiskControllers;
extern const DeviceList kScsiAdapters;
extern const DeviceList kUsbControllers;

// Writes the list of what the scan of a class finds, write(report, label, record) for each record;
// false, with the list name alone on its line, when the class cannot be examined.
template <typename Write>
bool WriteScannedList(ItemRun& run, const char* list_name, const char* class_name,
                      std::size_t record_size, Write write) {
  RecordArray records;
  if (!records.Create(record_size) || ScanDeviceClass(run.context, class_name, records) < 0)
    return WriteFailedList(run.report, list_name);
  WriteList<DeviceRecord>(run.report, list_name, records, write);
  return true;
}

// The same with the lines of the list's devices.
bool WriteDeviceList(ItemRun& run, const DeviceList& list);

// The same as a function of the section table's.
template <const DeviceList& kList>
bool WriteDevices(ItemRun& run) {
  return WriteDeviceList(run, kList);
}

}  // namespace hostscope
