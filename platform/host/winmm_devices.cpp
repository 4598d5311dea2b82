// The wave and MIDI devices of WINMM.DLL.
#include "platform/host/machine.h"
#include "platform/host/record_text.h"
#include "platform/host/winmm.h"

using namespace host;

namespace {

const LayerLibrary kLibrary({.name = "WINMM.DLL",
                             .exports = {
                                 HOST_EXPORT(waveInGetNumDevs), HOST_EXPORT(waveInGetDevCapsA),
                                 HOST_EXPORT(waveOutGetNumDevs), HOST_EXPORT(waveOutGetDevCapsA),
                                 HOST_EXPORT(midiInGetNumDevs), HOST_EXPORT(midiInGetDevCapsA),
                                 HOST_EXPORT(midiOutGetNumDevs), HOST_EXPORT(midiOutGetDevCapsA)}});

constexpr UINT kDriverVersion = 0x0400;
constexpr WORD kStereo = 2;

template <typename Devices>
UINT Count(const char* function, Devices Multimedia::*devices) {
  if (CallFails(function)) return 0;
  return static_cast<UINT>((CurrentMachine().multimedia.*devices).size());
}

template <typename Record>
void Fill(Record& record, const WaveDevice& device) {
  FillField(record.szPname, device.name);
  record.dwFormats = device.formats;
  record.wChannels = kStereo;
}

void Fill(MIDIINCAPSA& record, const std::string& device) {
  FillField(record.szPname, device);
}

void Fill(MIDIOUTCAPSA& record, const MidiOutput& device) {
  FillField(record.szPname, device.name);
  record.wTechnology = device.technology;
  record.wVoices = device.voices;
  record.wNotes = device.notes;
  record.wChannelMask = device.channel_mask;
}

template <typename Devices, typename Record>
MMRESULT Tell(const char* function, Devices Multimedia::*devices, UINT_PTR number, Record* record,
              UINT size) {
  if (const DWORD error = CallError(function)) return error;
  const Devices& all = CurrentMachine().multimedia.*devices;
  if (record == nullptr || size != sizeof *record) return MMSYSERR_INVALPARAM;
  if (number >= all.size()) return MMSYSERR_BADDEVICEID;
  *record = {};
  record->vDriverVersion = kDriverVersion;
  Fill(*record, all[number]);
  return MMSYSERR_NOERROR;
}

}  // namespace

UINT WINAPI waveInGetNumDevs() {
  return Count("waveInGetNumDevs", &Multimedia::wave_inputs);
}

UINT WINAPI waveOutGetNumDevs() {
  return Count("waveOutGetNumDevs", &Multimedia::wave_outputs);
}

UINT WINAPI midiInGetNumDevs() {
  return Count("midiInGetNumDevs", &Multimedia::midi_inputs);
}

UINT WINAPI midiOutGetNumDevs() {
  return Count("midiOutGetNumDevs", &Multimedia::midi_outputs);
}

MMRESULT WINAPI waveInGetDevCapsA(UINT_PTR device, WAVEINCAPSA* capabilities, UINT size) {
  return Tell("waveInGetDevCapsA", &Multimedia::wave_inputs, device, capabilities, size);
}

MMRESULT WINAPI waveOutGetDevCapsA(UINT_PTR device, WAVEOUTCAPSA* capabilities, UINT size) {
  return Tell("waveOutGetDevCapsA", &Multimedia::wave_outputs, device, capabilities, size);
}

MMRESULT WINAPI midiInGetDevCapsA(UINT_PTR device, MIDIINCAPSA* capabilities, UINT size) {
  return Tell("midiInGetDevCapsA", &Multimedia::midi_inputs, device, capabilities, size);
}

MMRESULT WINAPI midiOutGetDevCapsA(UINT_PTR device, MIDIOUTCAPSA* capabilities, UINT size) {
  return Tell("midiOutGetDevCapsA", &Multimedia::midi_outputs, device, capabilities, size);
}
