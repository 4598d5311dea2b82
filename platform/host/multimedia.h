// The machine's codecs and its wave and MIDI devices.
#pragma once

#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct AudioCodec {
  DWORD version = 0;  // vdwDriver: major and minor number in the two top bytes, the build below
  std::string name;   // szLongName
};

struct VideoCodec {
  DWORD handler = 0;        // four-character code
  std::string description;  // these two are 16-bit texts on the platform
  std::string driver;
};

struct WaveDevice {
  DWORD formats = 0;
  std::string name;
};

struct MidiOutput {
  WORD technology = 0;
  WORD voices = 0;
  WORD notes = 0;
  WORD channel_mask = 0;
  std::string name;
};

// Everything in the order in which the platform enumerates it.
struct Multimedia {
  std::vector<AudioCodec> audio_codecs;
  std::vector<VideoCodec> video_codecs;
  std::vector<WaveDevice> wave_inputs;
  std::vector<WaveDevice> wave_outputs;
  std::vector<std::string> midi_inputs;
  std::vector<MidiOutput> midi_outputs;
};

}  // namespace host
