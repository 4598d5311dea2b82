// The section MULTIMEDIA: what the report says beside what the test finds out by other code.

#include <gtest/gtest.h>

#include <cstring>

#include "platform/win32.h"
#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

const std::string kCdromClass = "{4D36E965-E325-11CE-BFC1-08002BE10318}";
const std::string kCdromId = "IDE\\CDROMTEST\\5&0";
constexpr char kClasses[] = "System\\CurrentControlSet\\Control\\Class\\";
constexpr char kNtDevices[] = "System\\CurrentControlSet\\Enum\\";
constexpr char kOldDevices[] = "Enum\\";

// A drive of both families. Wine enumerates by the keys of NT in every release; Windows 95/98/Me
// reads its own. It goes with the object.
struct SeededCdrom {
  SeededCdrom() {
    PutTexts(kClasses + kCdromClass, {{"Class", "CDROM"}});
    PutTexts(kNtDevices + kCdromId,
             {{"ClassGUID", kCdromClass}, {"DeviceDesc", "A drive"}, {"Mfg", "Maker"}});
    PutTexts(kOldDevices + kCdromId, {{"DeviceDesc", "A drive"},
                                      {"Mfg", "Maker"},
                                      {"CurrentDriveLetterAssignment", "DE"},
                                      {"AutoInsertNotification", "\x01"}});
  }
  ~SeededCdrom() {
    for (const std::string& key :
         {kClasses + kCdromClass, kNtDevices + kCdromId, kOldDevices + kCdromId})
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
  }
};

std::string CodecLine(const std::string& name, const std::string& version) {
  return Padded(name, 52) + " ver " + version;
}

BOOL CALLBACK AddAudioCodec(HACMDRIVERID driver, DWORD_PTR lines, DWORD) {
  ACMDRIVERDETAILSW details = {};
  details.cbStruct = sizeof details;
  acmDriverDetailsW(driver, &details, 0);
  char version[16];
  std::snprintf(version, sizeof version, "%lu.%02lu", details.vdwDriver >> 24,
                details.vdwDriver >> 16 & 0xFF);
  reinterpret_cast<std::vector<std::string>*>(lines)->push_back(
      CodecLine(Narrow(details.szLongName), version));
  return TRUE;
}

// The drivers "vidc.*" of system.ini, which the manager goes through, each asked by its code.
// Wine's have no version resource.
std::vector<std::string> VideoCodecLines() {
  std::vector<std::string> lines;
  char names[2000] = {};
  GetPrivateProfileStringA("drivers32", nullptr, "", names, sizeof names, "system.ini");
  for (const char* name = names; *name != '\0'; name += std::strlen(name) + 1) {
    if (_strnicmp(name, "vidc.", 5) != 0) continue;
    DWORD code = 0;
    std::memcpy(&code, name + 5, sizeof code);
    ICINFO info = {};
    const HIC compressor = ICOpen(ICTYPE_VIDEO, code, ICMODE_QUERY);
    ICGetInfo(compressor, &info, sizeof info);
    ICClose(compressor);
    lines.push_back(CodecLine(Narrow(info.szDescription), ""));
  }
  return lines;
}

std::vector<std::string> AudioCodecLines() {
  std::vector<std::string> lines;
  acmDriverEnum(AddAudioCodec, reinterpret_cast<DWORD_PTR>(&lines), 0);
  return lines;
}

// Every format of the null device is there.
template <typename Capabilities>
std::vector<std::string> WaveLines(UINT count,
                                   MMRESULT(WINAPI* read)(UINT_PTR, Capabilities*, UINT)) {
  std::vector<std::string> lines;
  for (UINT i = 0; i < count; ++i) {
    Capabilities capabilities = {};
    read(i, &capabilities, sizeof capabilities);
    EXPECT_EQ(capabilities.dwFormats & 0xFFF, 0xFFFu);
    lines.push_back(Narrow(capabilities.szPname) + ", max format: 44.1 kHz, stereo, 16-bit");
  }
  return lines;
}

std::string List(const std::string& name, const std::vector<std::string>& lines) {
  std::string label = name + " (total " + std::to_string(lines.size()) + ")";
  std::string text;
  for (const std::string& line : lines) {
    text += Padded(label, 27) + line + "\r\n";
    label.clear();
  }
  return text + "\r\n";
}

// What stands below the banner, without the empty line of the network section. The sound system
// keeps threads of its own, so the end of the program's does not show: keys are typed until one is
// taken.
std::string Items(const std::string& keys, std::vector<std::string>& list) {
  const Folder folder;
  folder.Write("test.ini", "[MULTIMEDIA]\r\n" + keys);
  Program program(folder, {.arguments = {"test.ini"}});
  EXPECT_TRUE(program.WaitForLine(kLastLine));
  list = program.Lines();
  EXPECT_TRUE(WaitUntil([&] {
    PostMessageA(program.List(), WM_KEYDOWN, 'X', 0);
    return !program.Runs();
  }));
  const std::string report = folder.Read("hscope.txt").value_or("");
  const size_t rule = report.rfind("=\r\n\r\n");
  return rule == std::string::npos ? report : report.substr(rule + 5, report.size() - rule - 7);
}

class MultimediaOnEveryRelease : public EveryRelease {};

TEST_P(MultimediaOnEveryRelease, CodecsAndSoundDevicesAreAsOtherCodeFindsThem) {
  const auto sound =
      RegistryValue::Text(HKEY_CURRENT_USER, "Software\\Wine\\Drivers", "Audio", "alsa");
  const auto video = VideoCodecLines();
  EXPECT_EQ(video.size(), 3u);
  ASSERT_EQ(waveInGetNumDevs() + waveOutGetNumDevs(), 2u);
  ASSERT_EQ(midiInGetNumDevs() + midiOutGetNumDevs(), 0u);
  std::vector<std::string> list;
  EXPECT_EQ(Items("AudioCodecs=1\r\nVideoCodecs=1\r\nWaveIn=1\r\nWaveOut=1\r\nMIDIIn=1\r\n"
                  "MIDIOut=1\r\n",
                  list),
            List("Audio codecs", AudioCodecLines()) + List("Video codecs", video) +
                List("Wave input", WaveLines(waveInGetNumDevs(), waveInGetDevCapsW)) +
                List("Wave output", WaveLines(waveOutGetNumDevs(), waveOutGetDevCapsW)) +
                Padded("MIDI input", 27) + "\r\n" + Padded("MIDI output", 27) + "\r\n");
  const std::vector<std::string> expected = {ProgressLine("Audio codecs...", "Ok"),
                                             ProgressLine("Video codecs...", "Ok"),
                                             ProgressLine("Wave input...", "Ok"),
                                             ProgressLine("Wave output...", "Ok"),
                                             ProgressLine("MIDI input...", "Failed"),
                                             ProgressLine("MIDI output...", "Failed"),
                                             "",
                                             kLastLine};
  EXPECT_EQ(list, expected);
}

TEST_P(MultimediaOnEveryRelease, CdromsAreListed) {
  const SeededCdrom cdrom;
  const bool is_nt = GetParam().has_tokens;
  std::vector<std::string> list;
  EXPECT_EQ(Items("CDROMs=1\r\n", list),
            FieldLine("CDROM (total 1)", "Description", "A drive") +
                FieldLine("", "Manufacturer", "Maker") + FieldLine("", "Driver date", "") +
                FieldLine("", "Autorun", is_nt ? "No" : "Yes") +
                (is_nt ? "" : FieldLine("", "Drive letters", "DE")) + "\r\n");
  EXPECT_EQ(list.front(), ProgressLine("CDROM...", "Ok"));
}

INSTANTIATE_TEST_SUITE_P(Multimedia, MultimediaOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
