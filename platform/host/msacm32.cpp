#include "platform/host/msacm32.h"

#include "platform/host/machine.h"
#include "platform/host/record_text.h"

using namespace host;

namespace {

const LayerLibrary kLibrary({.name = "MSACM32.DLL",
                             .exports = {HOST_EXPORT(acmDriverEnum),
                                         HOST_EXPORT(acmDriverDetailsA)}});

// Drivers are known by their places, from 1 on.
HACMDRIVERID DriverAt(std::size_t index) {
  return reinterpret_cast<HACMDRIVERID>(index + 1);
}

const AudioCodec* FindDriver(HACMDRIVERID driver) {
  const std::vector<AudioCodec>& codecs = CurrentMachine().multimedia.audio_codecs;
  const std::size_t place = reinterpret_cast<std::size_t>(driver);
  return place >= 1 && place <= codecs.size() ? &codecs[place - 1] : nullptr;
}

}  // namespace

MMRESULT WINAPI acmDriverEnum(ACMDRIVERENUMCB callback, DWORD_PTR instance, DWORD flags) {
  if (const DWORD error = CallError("acmDriverEnum")) return error;
  if (callback == nullptr || flags != 0) return MMSYSERR_INVALPARAM;
  const std::size_t count = CurrentMachine().multimedia.audio_codecs.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (!callback(DriverAt(i), instance, ACMDRIVERDETAILS_SUPPORTF_CODEC)) break;
  }
  return MMSYSERR_NOERROR;
}

MMRESULT WINAPI acmDriverDetailsA(HACMDRIVERID driver, ACMDRIVERDETAILSA* details, DWORD flags) {
  if (const DWORD error = CallError("acmDriverDetailsA")) return error;
  if (details == nullptr || details->cbStruct != sizeof *details || flags != 0)
    return MMSYSERR_INVALPARAM;
  const AudioCodec* const codec = FindDriver(driver);
  if (codec == nullptr) return MMSYSERR_INVALHANDLE;
  *details = {};
  details->cbStruct = sizeof *details;
  details->vdwDriver = codec->version;
  details->fdwSupport = ACMDRIVERDETAILS_SUPPORTF_CODEC;
  FillField(details->szShortName, codec->name);
  FillField(details->szLongName, codec->name);
  return MMSYSERR_NOERROR;
}
