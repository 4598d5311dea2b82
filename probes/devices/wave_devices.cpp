#include "probes/devices/wave_devices.h"

#include "probes/devices/multimedia_capabilities.h"
#include "probes/devices/record_list.h"
#include "util/text.h"

namespace hostscope {
namespace {

struct WaveFormatRow {
  std::uint32_t bit;
  const char* text;
};
// The best first.
constexpr WaveFormatRow kWaveFormats[] = {
    {WAVE_FORMAT_4S16, "44.1 kHz, stereo, 16-bit"},
    {WAVE_FORMAT_4S08, "44.1 kHz, stereo, 8-bit"},
    {WAVE_FORMAT_4M16, "44.1 kHz, mono, 16-bit"},
    {WAVE_FORMAT_4M08, "44.1 kHz, mono, 8-bit"},
    {WAVE_FORMAT_2S16, "22.05 kHz, stereo, 16-bit"},
    {WAVE_FORMAT_2S08, "22.05 kHz, stereo, 8-bit"},
    {WAVE_FORMAT_2M16, "22.05 kHz, mono, 16-bit"},
    {WAVE_FORMAT_2M08, "22.05 kHz, mono, 8-bit"},
    {WAVE_FORMAT_1S16, "11.025 kHz, stereo, 16-bit"},
    {WAVE_FORMAT_1S08, "11.025 kHz, stereo, 8-bit"},
    {WAVE_FORMAT_1M16, "11.025 kHz, mono, 16-bit"},
    {WAVE_FORMAT_1M08, "11.025 kHz, mono, 8-bit"},
};

static_assert(sizeof(WAVEINCAPSA) == 48 && sizeof(WAVEOUTCAPSA) == 52);

template <typename Capabilities>
WaveDeviceRecord RecordOf(const Capabilities& capabilities) {
  WaveDeviceRecord device = {};
  CopyText(device.name, capabilities.szPname);
  CopyText(device.max_format, MaxWaveFormat(capabilities.dwFormats));
  return device;
}

bool WriteWaveDevices(ItemRun& run, WaveDirection direction, const char* list_name) {
  RecordArray devices;
  if (!devices.Create(sizeof(WaveDeviceRecord)) || !ListWaveDevices(direction, devices))
    return WriteFailedList(run.report, list_name);
  WriteLines<WaveDeviceRecord>(
      run.report, list_name, devices,
      [](ReportWriter& report, const char* label, const WaveDeviceRecord& device) {
        report.WriteFormatted("%-27s%s, max format: %s\r\n", label, device.name, device.max_format);
      });
  return true;
}

}  // namespace

const char* MaxWaveFormat(std::uint32_t formats) {
  for (const WaveFormatRow& row : kWaveFormats) {
    if ((formats & row.bit) != 0) return row.text;
  }
  return "";
}

bool ListWaveDevices(WaveDirection direction, RecordArray& devices) {
  if (direction == WaveDirection::kInput) {
    return ListCapabilities<WAVEINCAPSA>({"waveInGetNumDevs", "waveInGetDevCapsA"}, devices,
                                         RecordOf<WAVEINCAPSA>);
  }
  return ListCapabilities<WAVEOUTCAPSA>({"waveOutGetNumDevs", "waveOutGetDevCapsA"}, devices,
                                        RecordOf<WAVEOUTCAPSA>);
}

bool WriteWaveInputs(ItemRun& run) {
  return WriteWaveDevices(run, WaveDirection::kInput, "Wave input");
}

bool WriteWaveOutputs(ItemRun& run) {
  return WriteWaveDevices(run, WaveDirection::kOutput, "Wave output");
}

}  // namespace hostscope
