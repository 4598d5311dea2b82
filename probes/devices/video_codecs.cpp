#include "probes/devices/video_codecs.h"

#include <algorithm>
#include <cstring>

#include "probes/devices/record_list.h"
#include "util/file_version.h"
#include "util/library.h"
#include "util/text.h"
#include "util/wide_text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "Video codecs";

constexpr std::array<const char*, 4> kManagerFunctions = {"ICInfo", "ICOpen", "ICGetInfo",
                                                          "ICClose"};
using VideoManager = BoundLibrary<kManagerFunctions.size()>;
using InfoFunction = decltype(&ICInfo);
using OpenFunction = decltype(&ICOpen);
using GetInfoFunction = decltype(&ICGetInfo);
using CloseFunction = decltype(&ICClose);

// Some compressors leave to the manager what it knows: their driver and their code.
void CompleteAnswer(const ICINFO& known, ICINFO& answer) {
  if (answer.szDriver[0] == 0) std::memcpy(answer.szDriver, known.szDriver, sizeof known.szDriver);
  if (answer.fccHandler == 0) answer.fccHandler = known.fccHandler;
}

// What the compressor says of itself in place of what the manager has said; that stays when the
// compressor can't be opened or does not describe itself.
void AskCompressor(const VideoManager& manager, ICINFO& info) {
  const HIC compressor = manager.Get<OpenFunction>(1)(ICTYPE_VIDEO, info.fccHandler, ICMODE_QUERY);
  if (compressor == nullptr) return;
  ICINFO answer = info;
  // The answer is a number of bytes or an error, which is negative; 0 is no sign of either.
  const LRESULT filled = manager.Get<GetInfoFunction>(2)(compressor, &answer, sizeof answer);
  if (filled >= 0 && answer.szDescription[0] != 0) {
    CompleteAnswer(info, answer);
    info = answer;
  }
  manager.Get<CloseFunction>(3)(compressor);
}

bool FindCompressor(const VideoManager& manager, DWORD index, ICINFO& info) {
  static_assert(sizeof info == 568);
  info = {};
  info.dwSize = sizeof info;
  if (!manager.Get<InfoFunction>(0)(ICTYPE_VIDEO, index, &info)) return false;
  AskCompressor(manager, info);
  return true;
}

// A driver may have left its text without a terminator.
template <std::size_t kUnits, std::size_t kSize>
void ConvertText(const WCHAR (&wide)[kUnits], char (&text)[kSize]) {
  const WCHAR* const end = std::find(wide, wide + kUnits - 1, WCHAR{0});
  NarrowText(wide, static_cast<std::size_t>(end - wide), text);
}

// All but the version, for which the driver's file has to be read.
VideoCodecRecord RecordOf(const ICINFO& info) {
  VideoCodecRecord codec = {};
  codec.handler = info.fccHandler;
  ConvertText(info.szDescription, codec.description);
  ConvertText(info.szDriver, codec.driver);
  return codec;
}

}  // namespace

bool IsListedVideoCodec(const RecordArray& codecs, const VideoCodecRecord& codec) {
  for (int i = 0; i < codecs.count(); ++i) {
    const VideoCodecRecord& listed = *codecs.GetAs<VideoCodecRecord>(i);
    if (listed.handler == codec.handler || SameText(listed.driver, codec.driver)) return true;
  }
  return false;
}

void ListVideoCodecs(RecordArray& codecs) {
  VideoManager manager;
  if (!manager.Bind("MSVFW32.DLL", kManagerFunctions)) return;
  ICINFO info;
  for (DWORD index = 0; FindCompressor(manager, index, info); ++index) {
    VideoCodecRecord codec = RecordOf(info);
    if (IsListedVideoCodec(codecs, codec)) continue;
    ReadFileVersionItem(codec.driver, "FileVersion", codec.version);
    codecs.Append(&codec);
  }
}

bool WriteVideoCodecs(ItemRun& run) {
  RecordArray codecs;
  // This list cannot fail: without memory it is empty, as it is without the manager.
  codecs.Create(sizeof(VideoCodecRecord));
  ListVideoCodecs(codecs);
  WriteLines<VideoCodecRecord>(
      run.report, kListName, codecs,
      [](ReportWriter& report, const char* label, const VideoCodecRecord& codec) {
        report.WriteFormatted("%-27s%-52s ver %s\r\n", label, codec.description, codec.version);
      });
  return true;
}

}  // namespace hostscope
