#include "platform/host/msvfw32.h"

#include <algorithm>

#include "platform/host/machine.h"
#include "platform/host/record_text.h"

using namespace host;

namespace {

const LayerLibrary kLibrary({.name = "MSVFW32.DLL",
                             .exports = {HOST_EXPORT(ICInfo), HOST_EXPORT(ICOpen),
                                         HOST_EXPORT(ICGetInfo), HOST_EXPORT(ICClose)}});

struct Compressor : Object {
  explicit Compressor(const VideoCodec& opened) : Object("compressor"), codec(opened) {}
  VideoCodec codec;
};

bool SameCode(DWORD left, DWORD right) {
  const auto text = [](const DWORD& code) {
    return std::string_view(reinterpret_cast<const char*>(&code), sizeof code);
  };
  return EqualNoCase(text(left), text(right));
}

const VideoCodec* FindCodec(DWORD handler) {
  const std::vector<VideoCodec>& codecs = CurrentMachine().multimedia.video_codecs;
  const auto found = std::find_if(codecs.begin(), codecs.end(), [handler](const VideoCodec& codec) {
    return SameCode(codec.handler, handler);
  });
  return found == codecs.end() ? nullptr : &*found;
}

ICINFO RecordOf(const VideoCodec& codec) {
  ICINFO record = {};
  record.dwSize = sizeof record;
  record.fccType = ICTYPE_VIDEO;
  record.fccHandler = codec.handler;
  FillField(record.szDriver, codec.driver);
  return record;
}

}  // namespace

BOOL WINAPI ICInfo(DWORD type, DWORD number, ICINFO* info) {
  if (CallFails("ICInfo") || info == nullptr || info->dwSize != sizeof *info) return FALSE;
  const std::vector<VideoCodec>& codecs = CurrentMachine().multimedia.video_codecs;
  if (type != ICTYPE_VIDEO || number >= codecs.size()) return FALSE;
  *info = RecordOf(codecs[number]);
  return TRUE;
}

HIC WINAPI ICOpen(DWORD type, DWORD handler, UINT) {
  if (CallFails("ICOpen")) return nullptr;
  const VideoCodec* const codec = type == ICTYPE_VIDEO ? FindCodec(handler) : nullptr;
  if (codec == nullptr) return nullptr;
  return reinterpret_cast<HIC>(CurrentMachine().handles.Open(std::make_shared<Compressor>(*codec)));
}

LRESULT WINAPI ICGetInfo(HIC compressor, ICINFO* info, DWORD size) {
  if (CallFails("ICGetInfo")) return 0;
  const auto opened =
      CurrentMachine().handles.FindAs<Compressor>(reinterpret_cast<std::uintptr_t>(compressor));
  if (opened == nullptr) return ICERR_BADHANDLE;
  if (info == nullptr || size < sizeof *info) return 0;
  *info = RecordOf(opened->codec);
  FillField(info->szName, opened->codec.description);
  FillField(info->szDescription, opened->codec.description);
  return sizeof *info;
}

LRESULT WINAPI ICClose(HIC compressor) {
  if (CallFails("ICClose")) return ICERR_BADHANDLE;
  HandleTable& handles = CurrentMachine().handles;
  const auto value = reinterpret_cast<std::uintptr_t>(compressor);
  if (handles.FindAs<Compressor>(value) == nullptr) return ICERR_BADHANDLE;
  handles.Close(value);
  return ICERR_OK;
}
