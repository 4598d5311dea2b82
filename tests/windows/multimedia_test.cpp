// Sound devices: what the report says beside what the test finds out by other calls.

#include <gtest/gtest.h>

#include "platform/win32.h"
#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

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
std::string Items(const std::string& keys) {
  const Folder folder;
  folder.Write("test.ini", "[MULTIMEDIA]\r\n" + keys);
  Program program(folder, {.arguments = {"test.ini"}});
  EXPECT_TRUE(program.WaitForLine(kLastLine));
  EXPECT_TRUE(WaitUntil([&] {
    PostMessageA(program.List(), WM_KEYDOWN, 'X', 0);
    return !program.Runs();
  }));
  const std::string report = folder.Read("hscope.txt").value_or("");
  const size_t rule = report.rfind("=\r\n\r\n");
  return rule == std::string::npos ? report : report.substr(rule + 5, report.size() - rule - 7);
}

class MultimediaOnEveryRelease : public EveryRelease {};

TEST_P(MultimediaOnEveryRelease, SoundDevicesAreAsOtherCodeFindsThem) {
  const auto sound =
      RegistryValue::Text(HKEY_CURRENT_USER, "Software\\Wine\\Drivers", "Audio", "alsa");
  ASSERT_EQ(waveInGetNumDevs() + waveOutGetNumDevs(), 2u);
  ASSERT_EQ(midiInGetNumDevs() + midiOutGetNumDevs(), 0u);
  EXPECT_EQ(Items("WaveIn=1\r\nWaveOut=1\r\nMIDIIn=1\r\nMIDIOut=1\r\n"),
            List("Wave input", WaveLines(waveInGetNumDevs(), waveInGetDevCapsW)) +
                List("Wave output", WaveLines(waveOutGetNumDevs(), waveOutGetDevCapsW)) +
                Padded("MIDI input", 27) + "\r\n" + Padded("MIDI output", 27) + "\r\n");
}

INSTANTIATE_TEST_SUITE_P(Multimedia, MultimediaOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
