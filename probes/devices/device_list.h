// The items that list the devices of one class.
#pragma once

#include <cstddef>

#include "report/item.h"

namespace hostscope {

struct DeviceList {
  const char* list_name;
  const char* class_name;
  std::size_t record_size;
  // A further line of each device: its field name, and the text of it in the record. Null: no such
  // line.
  const char* extra_field = nullptr;
  const char* (*extra_text)(const DeviceRecord& record) = nullptr;
};

extern const DeviceList kMediaDevices;
extern const DeviceList kMonitors;
extern const DeviceList kVideoAdapters;
extern const DeviceList kMouse;
extern const DeviceList kKeyboard;
extern const DeviceList kModems;
extern const DeviceList kPorts;
extern const DeviceList kFloppyControllers;
extern const DeviceList kDiskControllers;
extern const DeviceList kScsiAdapters;
extern const DeviceList kUsbControllers;

// Writes the list; false, with the list name alone on its line, when the class cannot be examined.
bool WriteDeviceList(ItemRun& run, const DeviceList& list);

// The same as a function of the section table's.
template <const DeviceList& kList>
bool WriteDevices(ItemRun& run) {
  return WriteDeviceList(run, kList);
}

}  // namespace hostscope
