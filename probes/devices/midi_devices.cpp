#include "probes/devices/midi_devices.h"

#include "probes/devices/multimedia_capabilities.h"
#include "probes/devices/record_list.h"
#include "util/number_text.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kInputs[] = "MIDI input";
constexpr char kOutputs[] = "MIDI output";

constexpr char kNumberFieldFormat[] = "%-27s%-15s:  %u\r\n";

constexpr NumberText kTechnologies[] = {
    {MOD_MIDIPORT, "MIDI hardware port"},     {MOD_SYNTH, "synthesizer"},
    {MOD_SQSYNTH, "square wave synthesizer"}, {MOD_FMSYNTH, "FM synthesizer"},
    {MOD_MAPPER, "Microsoft MIDI mapper"},
};

static_assert(sizeof(MIDIINCAPSA) == 44 && sizeof(MIDIOUTCAPSA) == 52);

MidiInRecord InputOf(const MIDIINCAPSA& capabilities) {
  MidiInRecord device = {};
  CopyText(device.name, capabilities.szPname);
  return device;
}

MidiOutRecord OutputOf(const MIDIOUTCAPSA& capabilities) {
  MidiOutRecord device = {};
  CopyText(device.name, capabilities.szPname);
  CopyText(device.technology, MidiTechnology(capabilities.wTechnology));
  device.voices = capabilities.wVoices;
  device.notes = capabilities.wNotes;
  device.channel_mask = capabilities.wChannelMask;
  return device;
}

void WriteOutput(ReportWriter& report, char* label, const MidiOutRecord& device) {
  report.WriteFormatted(kTextFieldFormat, label, "Name", device.name);
  report.WriteFormatted(kTextFieldFormat, "", "Type", device.technology);
  report.WriteFormatted(kNumberFieldFormat, "", "Voices", unsigned{device.voices});
  report.WriteFormatted(kNumberFieldFormat, "", "Notes", unsigned{device.notes});
  report.WriteFormatted("%-27s%-15s:  0x%04X\r\n", "", "Channels", unsigned{device.channel_mask});
  report.WriteText(kLineEnd);
}

}  // namespace

const char* MidiTechnology(unsigned number) {
  return TextOfNumber(kTechnologies, number, "unknown");
}

bool ListMidiInputs(RecordArray& devices) {
  return ListCapabilities<MIDIINCAPSA>({"midiInGetNumDevs", "midiInGetDevCapsA"}, devices, InputOf);
}

bool ListMidiOutputs(RecordArray& devices) {
  return ListCapabilities<MIDIOUTCAPSA>({"midiOutGetNumDevs", "midiOutGetDevCapsA"}, devices,
                                        OutputOf);
}

bool WriteMidiInputs(ItemRun& run) {
  RecordArray devices;
  if (!devices.Create(sizeof(MidiInRecord)) || !ListMidiInputs(devices))
    return WriteFailedList(run.report, kInputs);
  WriteLines<MidiInRecord>(run.report, kInputs, devices,
                           [](ReportWriter& report, const char* label, const MidiInRecord& device) {
                             report.WriteFormatted("%-27s%s\r\n", label, device.name);
                           });
  return true;
}

bool WriteMidiOutputs(ItemRun& run) {
  RecordArray devices;
  if (!devices.Create(sizeof(MidiOutRecord)) || !ListMidiOutputs(devices))
    return WriteFailedList(run.report, kOutputs);
  WriteRecords<MidiOutRecord>(run.report, kOutputs, devices, WriteOutput);
  return true;
}

}  // namespace hostscope
