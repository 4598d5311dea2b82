// Everything that the program can report, in one run of each release, beside the kept report: in
// tests/reports/wine.txt a "*" stands for any text within a line, and a line that begins with "9x>
// " or "nt> " is there on that family alone.

#include <gtest/gtest.h>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

constexpr char kProfile[] =
    "[SYSTEM]\r\nWindowsVersion=1\r\nWorkingTime=1\r\nComputerName=1\r\nUserName=1\r\n"
    "UserLocale=1\r\nWindowsFolder=1\r\nSystemFolder=1\r\nTempFolder=1\r\nBIOSVersion=1\r\n"
    "ProcessorsCount=1\r\nProcessorName=1\r\nProcessorSpeed=1\r\nCoProcessor=1\r\nMMX=1\r\n"
    "3DNow=1\r\nExtended3DNow=1\r\nSSE=1\r\nSSE2=1\r\nMemoryUsage=1\r\nPhysicalMemory=1\r\n"
    "Pagefiles=1\r\nFreeSystemResources=1\r\nFreeGDIResources=1\r\nFreeUserResources=1\r\n"
    "[MULTIMEDIA]\r\nCDROMs=1\r\nMediaDevices=1\r\nAudioCodecs=1\r\nVideoCodecs=1\r\n"
    "WaveIn=1\r\nWaveOut=1\r\nMIDIIn=1\r\nMIDIOut=1\r\n"
    "[DISPLAY]\r\nMonitors=1\r\nVideoAdapters=1\r\nCurrentResolusion=1\r\nMaxResolusion=1\r\n"
    "CurrentBitsPixel=1\r\nMaxBitsPixel=1\r\nLargeFont=1\r\n"
    "[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n"
    "[INPUT]\r\nMouse=1\r\nKeyboard=1\r\nJoysticks=1\r\n"
    "[COMMUNICATION]\r\nModems=1\r\n[PORT]\r\nPorts=1\r\n"
    "[DLLS]\r\nv_both.dll\r\nnosuch.dll\r\n"
    "[REGISTRY KEYS]\r\nHKCU\\Software\\Hostscope whole\r\nHKCU\\Software\\Hostscope none,1\r\n"
    "[SCAN KEYS]\r\nHKCU\\Software\\Hostscope whole,0,1\r\n"
    "[FOLDERS]\r\nC:\\nosuch\r\n"
    "[CUSTOM DLLS]\r\nnosuch.dll,Write\r\nsample_plugin.dll,WriteConfigurationFiles\r\n";
constexpr char kKey[] = "Software\\Hostscope whole";

// Whether the line is the pattern with something for each "*" of it.
bool Fits(std::string_view pattern, std::string_view line) {
  if (pattern.empty() || pattern.front() != '*')
    return pattern.empty() ? line.empty()
                           : !line.empty() && line.front() == pattern.front() &&
                                 Fits(pattern.substr(1), line.substr(1));
  return Fits(pattern.substr(1), line) || (!line.empty() && Fits(pattern, line.substr(1)));
}

std::vector<std::string> KeptLines(bool is_nt) {
  const auto kept = ReadFileBytes(HOSTSCOPE_REPORTS_FOLDER "/wine.txt");
  std::vector<std::string> lines;
  for (const std::string& line : ReportLines(kept.value_or(""))) {
    const std::string family = line.substr(0, 4);
    if (family == "9x> " || family == "nt> ") {
      if ((family == "nt> ") == is_nt) lines.push_back(line.substr(4));
    } else {
      lines.push_back(line);
    }
  }
  return lines;
}

class WholeReport : public EveryRelease {};

TEST_P(WholeReport, IsAsKept) {
  const Folder folder;
  for (const char* name : {"v_both.dll", "sample_plugin.dll"})
    folder.CopyFromBuild(name);
  folder.MakeFolder("Data");
  folder.Write("Data\\One.txt", "three");
  const RegistryValue where =
      RegistryValue::Text(HKEY_CURRENT_USER, kKey, "Data", folder.Path("Data") + "\\");
  const RegistryValue number = RegistryValue::Number(HKEY_CURRENT_USER, kKey, "Number", 10);
  const std::vector<std::string> lines = ReportLines(ReportOf(folder, kProfile));
  const std::vector<std::string> kept = KeptLines(GetParam().has_tokens);
  ASSERT_FALSE(kept.empty());
  for (size_t i = 0; i < std::max(lines.size(), kept.size()); ++i) {
    const std::string line = i < lines.size() ? lines[i] : "(no line)";
    const std::string pattern = i < kept.size() ? kept[i] : "(no line)";
    ASSERT_TRUE(Fits(pattern, line)) << "line " << i + 1 << " is    " << line << "\nkept is      "
                                     << pattern << "\nwhole report:\n"
                                     << Joined(lines);
  }
}

INSTANTIATE_TEST_SUITE_P(Run, WholeReport, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
