// The MIDI input and output devices.
#pragma once

#include <cstdint>

#include "report/item.h"
#include "util/record_array.h"

namespace hostscope {

struct MidiInRecord {
  char name[32];
};

struct MidiOutRecord {
  char name[32];
  char technology[24];
  std::uint16_t voices;
  std::uint16_t notes;
  std::uint16_t channel_mask;
};

// What an output device's technology number means; "unknown" for any other number.
const char* MidiTechnology(unsigned number);

// Append a record for each device whose capabilities can be read. False when there is none.
bool ListMidiInputs(RecordArray& devices);
bool ListMidiOutputs(RecordArray& devices);

bool WriteMidiInputs(ItemRun& run);
bool WriteMidiOutputs(ItemRun& run);

}  // namespace hostscope
