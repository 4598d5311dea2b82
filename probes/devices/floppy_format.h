// Telling floppy drives from other drives for removable media, and the two sizes of disks apart.
#pragma once

#include <cstdint>

#include "report/probe_context.h"

namespace hostscope {

// The format of the drive, given by its letter and a colon: the size of its disks in inches
// ("3.5\""), or the empty text for a drive that is no floppy drive. False, the format as it was,
// when the drive can't be asked.
bool ReadFloppyFormat(const ProbeContext& context, const char* drive, const char*& format);

// The format by the media type of NT, and by the device type of DOS.
const char* FormatOfMediaType(std::uint32_t media_type);
const char* FormatOfDeviceType(std::uint8_t device_type);

}  // namespace hostscope
