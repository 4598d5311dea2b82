#pragma once

namespace hostscope {

// The registry facts of one device. Every field is a zero-terminated text; an absent value leaves
// its field empty. Richer records of single device classes begin with these fields.
struct DeviceRecord {
  char name[256];
  char manufacturer[256];
  char driver_date[11];
};

}  // namespace hostscope
