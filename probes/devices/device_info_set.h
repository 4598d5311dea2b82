// The set-up library's sets of devices.
#pragma once

#include "platform/win32.h"
#include "report/probe_context.h"
#include "util/text.h"

namespace hostscope {

// The identifier of the class of devices that has this name, of the first one if several have;
// false when the library gives none. The set-up library must be bound.
bool FindDeviceClass(const ProbeContext& context, const char* name, GUID& identifier);

// The present devices of a class, gone through once, from the first to the last.
class DeviceInfoSet {
 public:
  // Not open when the library gives no set.
  DeviceInfoSet(const ProbeContext& context, const GUID& class_identifier);
  ~DeviceInfoSet();
  DeviceInfoSet(const DeviceInfoSet&) = delete;
  DeviceInfoSet& operator=(const DeviceInfoSet&) = delete;

  bool open() const { return set_ != INVALID_HANDLE_VALUE; }
  // Goes on to the next device, at first to the first one; false when there is none.
  bool Next();
  // The device's name among all devices, of any length: its key below the root of device keys. None
  // when the library does not give it or gives an empty one, and when there is no memory.
  OwnedText InstanceId();

 private:
  const ProbeContext& context_;
  HDEVINFO set_;
  DWORD next_index_ = 0;
  SP_DEVINFO_DATA device_ = {};
};

}  // namespace hostscope
