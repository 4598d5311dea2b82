// Which devices of a class are present, and what the registry says about each of them.
#pragma once

#include <cstdint>

#include "report/device_record.h"
#include "report/probe_context.h"
#include "util/record_array.h"
#include "util/string_list.h"

namespace hostscope {

// Records of single classes: the fields of every device, then those of the class. Longer values are
// cut to their field.
struct CdromRecord : DeviceRecord {
  char drive_letters[26];
  std::uint8_t autorun;  // 0: off
};

struct NetCardRecord : DeviceRecord {
  char ip_address[16];
  char subnet_mask[16];
  std::uint32_t dhcp_enabled;  // 0: no
};

struct ModemRecord : DeviceRecord {
  char attached_to[256];
};

struct PortRecord : DeviceRecord {
  char port_name[256];
};

// Appends one record for each present device of the class, by the set-up library's name of it (case
// does not count), in the order in which the system enumerates them. The list holds the class's
// kind of record: CDROM, Net, Modem and Ports have their own, every other class plain device
// records. The number of records appended, 0 for a class without devices; -1 when the class cannot
// be examined: the set-up library is not there or gives no set of devices, or there is no memory
// for a record; those before it are in the list then.
std::int32_t ScanDeviceClass(const ProbeContext& context, const char* class_name,
                             RecordArray& records);

// The same for the classes of network components, NetClient and NetService, which come from the
// registry alone: appends their descriptions. -1 when the class is not there, and without memory.
std::int32_t ScanDeviceClass(const ProbeContext& context, const char* class_name,
                             StringList& descriptions);

}  // namespace hostscope
