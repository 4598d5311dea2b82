// The codecs of the audio compression manager.
#pragma once

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct AudioCodecRecord {
  char version[16];
  char name[128];
};

// Appends a record for each driver that is enabled, in the order of the manager; a driver that does
// not tell its details has an empty one. False when the manager is absent or does not enumerate.
bool ListAudioCodecs(RecordArray& codecs);

bool WriteAudioCodecs(ItemRun& run);

}  // namespace hostscope
