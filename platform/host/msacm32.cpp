#include "platform/host/msacm32.h"

#include <algorithm>
#include <cstring>

#include "platform/host/machine.h"
#include "platform/host/record_text.h"

using namespace host;

namespace {

#define EXPORT(function) \
  { #function, Export(&function) }
const LayerLibrary kLibrary({.name = "MSACM32.DLL",
                             .exports = {EXPORT(acmDriverEnum), EXPORT(acmDriverDetailsA)}});
#undef EXPORT

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
  if (callback == nullptr) return MMSYSERR_INVALPARAM;
  if ((flags & ~(ACM_DRIVERENUMF_NOLOCAL | ACM_DRIVERENUMF_DISABLED)) != 0)
    return MMSYSERR_INVALFLAG;
  const std::size_t count = CurrentMachine().multimedia.audio_codecs.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (!callback(DriverAt(i), instance, ACMDRIVERDETAILS_SUPPORTF_CODEC)) break;
  }
  return MMSYSERR_NOERROR;
}

MMRESULT WINAPI acmDriverDetailsA(HACMDRIVERID driver, ACMDRIVERDETAILSA* details, DWORD flags) {
  if (const DWORD error = CallError("acmDriverDetailsA")) return error;
  if (details == nullptr || details->cbStruct < sizeof details->cbStruct)
    return MMSYSERR_INVALPARAM;
  const AudioCodec* const codec = FindDriver(driver);
  if (codec == nullptr) return MMSYSERR_INVALHANDLE;
  if (flags != 0) return MMSYSERR_INVALFLAG;
  ACMDRIVERDETAILSA whole = {};
  whole.cbStruct = std::min<DWORD>(details->cbStruct, sizeof whole);
  whole.vdwDriver = codec->version;
  whole.fdwSupport = ACMDRIVERDETAILS_SUPPORTF_CODEC;
  FillField(whole.szShortName, codec->name);
  FillField(whole.szLongName, codec->name);
  std::memcpy(details, &whole, whole.cbStruct);
  return MMSYSERR_NOERROR;
}
