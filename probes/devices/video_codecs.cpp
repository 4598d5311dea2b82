#include "probes/devices/video_codecs.h"

#include <cstddef>
#include <iterator>

#include "probes/devices/record_list.h"
#include "util/file_version.h"
#include "util/library.h"
#include "util/text.h"

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

// What the compressor says of itself in place of what the manager has said; that stays when the
// compressor can't be opened or does not answer.
void AskCompressor(const VideoManager& manager, ICINFO& info) {
  const HIC compressor = manager.Get<OpenFunction>(1)(ICTYPE_VIDEO, info.fccHandler, ICMODE_QUERY);
  if (compressor == nullptr) return;
  ICINFO answer = info;
  if (manager.Get<GetInfoFunction>(2)(compressor, &answer, sizeof answer) > 0) info = answer;
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

// The 16-bit text in the system's code page. A driver may have left it without a terminator.
template <std::size_t kUnits, std::size_t kSize>
void ConvertText(WCHAR (&wide)[kUnits], char (&text)[kSize]) {
  wide[kUnits - 1] = 0;
  text[0] = '\0';
  // Composed characters for decomposed ones. A system whose code page is UTF-8 takes no flags.
  for (const DWORD flags : {DWORD{WC_COMPOSITECHECK | WC_DISCARDNS}, DWORD{0}}) {
    if (WideCharToMultiByte(CP_ACP, flags, wide, -1, text, kSize, nullptr, nullptr) > 0) break;
  }
  text[kSize - 1] = '\0';
}

VideoCodecRecord RecordOf(ICINFO& info) {
  VideoCodecRecord codec = {};
  codec.handler = info.fccHandler;
  ConvertText(info.szDescription, codec.description);
  ConvertText(info.szDriver, codec.driver);
  ReadFileVersionItem(codec.driver, "FileVersion", codec.version);
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
    const VideoCodecRecord codec = RecordOf(info);
    if (!IsListedVideoCodec(codecs, codec)) codecs.Append(&codec);
  }
}

bool WriteVideoCodecs(ItemRun& run) {
  RecordArray codecs;
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
