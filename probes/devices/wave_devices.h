// The wave input and output devices.
#pragma once

#include <cstdint>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct WaveDeviceRecord {
  char name[32];
  char max_format[27];
};

enum class WaveDirection { kInput, kOutput };

// The best of the twelve standard formats in a device's word of formats: the highest rate, then
// stereo, then 16 bits. The empty text when there is none of them.
const char* MaxWaveFormat(std::uint32_t formats);

// Appends a record for each device whose capabilities can be read. False when there is none.
bool ListWaveDevices(WaveDirection direction, RecordArray& devices);

bool WriteWaveInputs(ItemRun& run);
bool WriteWaveOutputs(ItemRun& run);

}  // namespace hostscope
