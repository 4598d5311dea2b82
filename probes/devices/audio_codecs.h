// The codecs of the audio compression manager.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct AudioCodecRecord {
  char version[16];
  char name[128];
};

// "%u.%02u" of the two top bytes of a driver's version word; the text has at least 8 characters.
void FormatCodecVersion(std::uint32_t version, std::span<char> text);

// Appends a record for each driver that is enabled, in the order of the manager; a driver that does
// not tell its details has an empty one. False when the manager is absent or does not enumerate.
bool ListAudioCodecs(RecordArray& codecs);

bool WriteAudioCodecs(ItemRun& run);

}  // namespace hostscope
