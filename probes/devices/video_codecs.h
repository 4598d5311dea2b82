// The codecs of the video compression manager.
#pragma once

#include <cstdint>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct VideoCodecRecord {
  std::uint32_t handler;  // four-character code
  char version[16];
  char description[128];
  char driver[128];
};

// Whether a codec of the list has the same handler, or the same driver (case counts). One driver
// often serves several codes, and is to be listed once.
bool IsListedVideoCodec(const RecordArray& codecs, const VideoCodecRecord& codec);

// Appends a record for each compressor that is not listed yet, in the order of the manager; none
// when the manager is absent. A compressor that can't be asked, or does not describe itself, has
// what the manager itself knows of it.
void ListVideoCodecs(RecordArray& codecs);

bool WriteVideoCodecs(ItemRun& run);

}  // namespace hostscope
