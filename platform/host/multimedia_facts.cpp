// The keys of machine.ini that describe codecs, wave and MIDI devices.
#include <array>

#include "platform/host/fact.h"

namespace host {
namespace {

using std::string_view;

// The name at the end of a value, with or without double quotes.
std::string TakeName(string_view& value) {
  const string_view name = TakeItem(value, '\0');
  return QuotedText(name).value_or(std::string(name));
}

// "4.0.1381 Name".
std::string ReadAudioCodec(Machine& machine, string_view, string_view value) {
  string_view version = TakeItem(value, ' ');
  const std::optional<WORD> major = TakeNumber(version, '.');
  const std::optional<WORD> minor = major ? TakeNumber(version, '.') : std::nullopt;
  const std::optional<WORD> build = minor ? TakeNumber(version, '\0') : std::nullopt;
  if (!build || *major > 0xFF || *minor > 0xFF || value.empty()) {
    return "the value is not a version (4.0.1381) and a name";
  }
  const DWORD number = static_cast<DWORD>(*major) << 24 | static_cast<DWORD>(*minor) << 16 | *build;
  machine.multimedia.audio_codecs.push_back({number, TakeName(value)});
  return "";
}

// The key is the four-character code; "iccvid.dll Name".
std::string ReadVideoCodec(Machine& machine, string_view key, string_view value) {
  if (key.size() != 4) return "the key is no four-character code";
  VideoCodec codec;
  for (std::size_t i = 0; i < 4; ++i)
    codec.handler |= static_cast<DWORD>(static_cast<BYTE>(key[i])) << (8 * i);
  codec.driver = TakeItem(value, ' ');
  if (value.empty()) return "the value is not a driver's file name and a description";
  codec.description = TakeName(value);
  machine.multimedia.video_codecs.push_back(std::move(codec));
  return "";
}

// "0xFFF Name".
template <std::vector<WaveDevice> Multimedia::*devices>
std::string ReadWaveDevice(Machine& machine, string_view, string_view value) {
  const std::optional<std::uint64_t> formats = Number(TakeItem(value, ' '));
  if (!formats || value.empty()) return "the value is not a number of formats and a name";
  (machine.multimedia.*devices).push_back({static_cast<DWORD>(*formats), TakeName(value)});
  return "";
}

std::string ReadMidiInput(Machine& machine, string_view, string_view value) {
  machine.multimedia.midi_inputs.push_back(TakeName(value));
  return "";
}

// "4 20 18 0xFFFF Name": technology, voices, notes, channels.
std::string ReadMidiOutput(Machine& machine, string_view, string_view value) {
  MidiOutput device;
  for (WORD* const field :
       {&device.technology, &device.voices, &device.notes, &device.channel_mask}) {
    const std::optional<std::uint64_t> number = Number(TakeItem(value, ' '), 0xFFFF);
    if (!number)
      return "the value does not begin with the numbers of technology, voices, notes "
             "and channels";
    *field = static_cast<WORD>(*number);
  }
  device.name = TakeName(value);
  machine.multimedia.midi_outputs.push_back(std::move(device));
  return "";
}

constexpr Fact kMultimediaFacts[] = {
    {"AudioCodecs", "*", ReadAudioCodec},
    {"VideoCodecs", "*", ReadVideoCodec},
    {"WaveInputs", "*", ReadWaveDevice<&Multimedia::wave_inputs>},
    {"WaveOutputs", "*", ReadWaveDevice<&Multimedia::wave_outputs>},
    {"MidiInputs", "*", ReadMidiInput},
    {"MidiOutputs", "*", ReadMidiOutput},
};

}  // namespace

std::span<const Fact> MultimediaFacts() {
  return kMultimediaFacts;
}

}  // namespace host
