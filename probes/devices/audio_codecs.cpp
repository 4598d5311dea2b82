#include "probes/devices/audio_codecs.h"

#include <cstdint>

#include "probes/devices/record_list.h"
#include "util/library.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "Audio codecs";

constexpr std::array<const char*, 2> kManagerFunctions = {"acmDriverEnum", "acmDriverDetailsA"};
using EnumFunction = decltype(&acmDriverEnum);
using DetailsFunction = decltype(&acmDriverDetailsA);

// "%u.%02u" of the two top bytes of a driver's version word.
void FormatCodecVersion(std::uint32_t version, char (&text)[sizeof AudioCodecRecord::version]) {
  wsprintfA(text, "%u.%02u", static_cast<unsigned>(version >> 24),
            static_cast<unsigned>(version >> 16 & 0xFF));
}

struct Enumeration {
  RecordArray& codecs;
  DetailsFunction read_details;
};

BOOL CALLBACK AppendCodec(HACMDRIVERID driver, DWORD_PTR instance, DWORD) {
  const Enumeration& enumeration = *reinterpret_cast<const Enumeration*>(instance);
  ACMDRIVERDETAILSA details = {};
  static_assert(sizeof details == 920);
  details.cbStruct = sizeof details;
  AudioCodecRecord codec = {};
  if (enumeration.read_details(driver, &details, 0) == 0) {
    FormatCodecVersion(details.vdwDriver, codec.version);
    CopyText(codec.name, details.szLongName);
  }
  enumeration.codecs.Append(&codec);
  return TRUE;
}

}  // namespace

bool ListAudioCodecs(RecordArray& codecs) {
  BoundLibrary<kManagerFunctions.size()> manager;
  if (!manager.Bind("MSACM32.DLL", kManagerFunctions)) return false;
  Enumeration enumeration{codecs, manager.Get<DetailsFunction>(1)};
  const auto enumerate = manager.Get<EnumFunction>(0);
  return enumerate(AppendCodec, reinterpret_cast<DWORD_PTR>(&enumeration), 0) == 0 &&
         codecs.complete();
}

bool WriteAudioCodecs(ItemRun& run) {
  RecordArray codecs;
  if (!codecs.Create(sizeof(AudioCodecRecord)) || !ListAudioCodecs(codecs))
    return WriteFailedList(run.report, kListName);
  WriteLines<AudioCodecRecord>(
      run.report, kListName, codecs,
      [](ReportWriter& report, const char* label, const AudioCodecRecord& codec) {
        report.WriteFormatted("%-27s%-52s ver %s\r\n", label, codec.name, codec.version);
      });
  return true;
}

}  // namespace hostscope
