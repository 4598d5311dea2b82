// CD-ROM drives, codecs, wave and MIDI devices on machines of several kinds, and with platform
// calls failing.

#include <gtest/gtest.h>

#include "platform/host/reg_file.h"
#include "probes/devices/audio_codecs.h"
#include "probes/devices/midi_devices.h"
#include "probes/devices/video_codecs.h"
#include "probes/devices/wave_devices.h"
#include "tests/support/report_run.h"
#include "tests/support/versioned_file.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;

TEST(WaveFormat, TheBestIsNamed) {
  constexpr std::pair<std::uint32_t, const char*> kRanks[] = {{0x800, "44.1 kHz, stereo, 16-bit"},
                                                              {0x200, "44.1 kHz, stereo, 8-bit"},
                                                              {0x400, "44.1 kHz, mono, 16-bit"},
                                                              {0x100, "44.1 kHz, mono, 8-bit"},
                                                              {0x080, "22.05 kHz, stereo, 16-bit"},
                                                              {0x020, "22.05 kHz, stereo, 8-bit"},
                                                              {0x040, "22.05 kHz, mono, 16-bit"},
                                                              {0x010, "22.05 kHz, mono, 8-bit"},
                                                              {0x008, "11.025 kHz, stereo, 16-bit"},
                                                              {0x002, "11.025 kHz, stereo, 8-bit"},
                                                              {0x004, "11.025 kHz, mono, 16-bit"},
                                                              {0x001, "11.025 kHz, mono, 8-bit"},
                                                              {0xFFFFF000, ""},
                                                              {0, ""}};
  std::uint32_t lower_ranks = 0xFFF;
  for (const auto& [bit, text] : kRanks) {
    EXPECT_STREQ(MaxWaveFormat(bit), text) << bit;
    lower_ranks &= ~bit;
    EXPECT_STREQ(MaxWaveFormat(bit | lower_ranks), text) << bit << " and all below";
  }
}

TEST(MidiDevices, TechnologyNumbers) {
  const char* const texts[] = {
      "unknown",        "MIDI hardware port",    "synthesizer", "square wave synthesizer",
      "FM synthesizer", "Microsoft MIDI mapper", "unknown",     "unknown"};
  for (unsigned number = 0; number < std::size(texts); ++number)
    EXPECT_STREQ(MidiTechnology(number), texts[number]) << number;
}

TEST(AudioCodecs, VersionWords) {
  const ReportRun run;
  constexpr std::pair<std::uint32_t, const char*> kRows[] = {
      {0x04000000, "4.00"}, {0x01050565, "1.05"}, {0xFFFFFFFF, "255.255"}, {0x0000FFFF, "0.00"}};
  for (const auto& [word, text] : kRows) {
    char version[16];
    FormatCodecVersion(word, version);
    EXPECT_STREQ(version, text) << word;
  }
}

// The lines below the banner, ended by "|", runs of blanks made one, and the last item's status
// word behind them.
std::string Squeezed(ReportRun& run) {
  std::string text;
  for (const char character : run.LastSection()) {
    if (character == '\n') text += '|';
    if (character != '\n' && character != '\r' && !(character == ' ' && text.ends_with(' ')))
      text += character;
  }
  text.pop_back();  // the empty line of the network section
  return text + run.Progress().back().substr(25);
}

void ExpectNothingOpen(Machine& machine, const char* what) {
  for (const char* const kind : {"key", "compressor", "device set", "file"})
    EXPECT_FALSE(machine.handles.OpenObjects().contains(kind)) << what << ", " << kind;
  for (const char* const library : {"WINMM.DLL", "MSACM32.DLL", "MSVFW32.DLL"})
    EXPECT_EQ(machine.libraries.References(library), 0u) << what << ", " << library;
}

constexpr DWORD Code(const char (&text)[5]) {
  DWORD code = 0;
  for (int i = 3; i >= 0; --i)
    code = code << 8 | static_cast<BYTE>(text[i]);
  return code;
}

const std::string kLongName(128, 'n');

void DescribeMultimedia(Machine& machine) {
  machine.multimedia = {.audio_codecs = {{0x04010565, "Microsoft ADPCM CODEC"}, {1, kLongName}},
                        .video_codecs = {{Code("cvid"), "Cinepak Codec by Radius", kLongName},
                                         {Code("mrle"), kLongName, "b.dll"}},
                        .wave_inputs = {{0x600, "In"}, {0, kLongName}},
                        .wave_outputs = {{0xFFF, "Out"}},
                        .midi_inputs = {"MIDI In", kLongName},
                        .midi_outputs = {{4, 20, 18, 0xFFFF, "FM"}, {7, 65535, 0, 0xA, kLongName}}};
}

TEST(MultimediaItems, Lists) {
  ReportRun run;
  DescribeMultimedia(run.machine());
  run.Run(
      "[MULTIMEDIA]\r\nAudioCodecs=1\r\nVideoCodecs=1\r\nWaveIn=1\r\nWaveOut=1\r\nMIDIIn=1\r\n"
      "MIDIOut=1\r\n");
  const std::string device(31, 'n'), codec(127, 'n'), blanks(27, ' ');
  EXPECT_EQ(
      run.LastSection(),
      "Audio codecs (total 2)     Microsoft ADPCM CODEC                                ver "
      "4.01\r\n" +
          blanks + codec +
          " ver 0.00\r\n\r\n"
          "Video codecs (total 2)     Cinepak Codec by Radius                              ver "
          "\r\n" +
          blanks + codec +
          " ver \r\n\r\n"
          "Wave input (total 2)       In, max format: 44.1 kHz, stereo, 8-bit\r\n" +
          blanks + device +
          ", max format: \r\n\r\n"
          "Wave output (total 1)      Out, max format: 44.1 kHz, stereo, 16-bit\r\n\r\n"
          "MIDI input (total 2)       MIDI In\r\n" +
          blanks + device +
          "\r\n\r\n"
          "MIDI output (total 2)      Name           :  FM\r\n" +
          blanks + "Type           :  FM synthesizer\r\n" + blanks + "Voices         :  20\r\n" +
          blanks + "Notes          :  18\r\n" + blanks + "Channels       :  0xFFFF\r\n\r\n" +
          blanks + "Name           :  " + device + "\r\n" + blanks +
          "Type           :  unknown\r\n" + blanks + "Voices         :  65535\r\n" + blanks +
          "Notes          :  0\r\n" + blanks + "Channels       :  0x000A\r\n\r\n\r\n");
  const std::vector<std::string> progress = {
      "Audio codecs...          Ok", "Video codecs...          Ok", "Wave input...            Ok",
      "Wave output...           Ok", "MIDI input...            Ok", "MIDI output...           Ok"};
  EXPECT_EQ(run.Progress(), progress);
  ExpectNothingOpen(run.machine(), "");
}

TEST(MultimediaItems, WhatIsNotThereOrFails) {
  const auto nothing = [](Machine& machine) { machine.multimedia = {}; };
  const auto without = [](const char* library) {
    return [=](Machine& machine) { machine.libraries.Remove(library); };
  };
  const auto failing = [](const char* function, unsigned n) {
    return [=](Machine& machine) { machine.faults.FailNth(function, n, MMSYSERR_NODRIVER); };
  };
  const struct {
    const char* key;
    std::function<void(Machine&)> change;
    std::string expected;
  } rows[] = {
      {"AudioCodecs", nothing, "Audio codecs (total 0)|Ok"},
      {"AudioCodecs", failing("acmDriverDetailsA", 1),
       "Audio codecs (total 2) ver | " + kLongName.substr(1) + " ver 0.00||Ok"},
      {"AudioCodecs", failing("acmDriverEnum", 1), "Audio codecs |Failed"},
      {"AudioCodecs", without("MSACM32.DLL"), "Audio codecs |Failed"},
      {"AudioCodecs",
       [](Machine& machine) { machine.libraries.RemoveExport("MSACM32.DLL", "acmDriverDetailsA"); },
       "Audio codecs |Failed"},
      {"VideoCodecs", nothing, "Video codecs (total 0)|Ok"},
      {"VideoCodecs", without("MSVFW32.DLL"), "Video codecs (total 0)|Ok"},
      {"WaveIn", nothing, "Wave input |Failed"},
      {"WaveIn", without("WINMM.DLL"), "Wave input |Failed"},
      {"WaveIn", failing("waveInGetDevCapsA", 2),
       "Wave input (total 1) In, max format: 44.1 kHz, stereo, 8-bit||Ok"},
      {"WaveOut", nothing, "Wave output |Failed"},
      {"WaveOut", failing("waveOutGetDevCapsA", 1), "Wave output |Failed"},
      {"MIDIIn", nothing, "MIDI input |Failed"},
      {"MIDIIn", failing("midiInGetDevCapsA", 2), "MIDI input (total 1) MIDI In||Ok"},
      {"MIDIOut", nothing, "MIDI output |Failed"},
      {"MIDIOut", failing("midiOutGetDevCapsA", 2),
       "MIDI output (total 1) Name : FM| Type : FM synthesizer| Voices : 20| Notes : 18"
       "| Channels : 0xFFFF||Ok"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    DescribeMultimedia(run.machine());
    row.change(run.machine());
    run.Run("[MULTIMEDIA]\r\n" + std::string(row.key) + "=1\r\n");
    EXPECT_EQ(Squeezed(run), row.expected) << row.key;
    ExpectNothingOpen(run.machine(), row.key);
  }
}

TEST(VideoCodecs, AreListedOnce) {
  const ReportRun run;
  RecordArray codecs;
  codecs.Create(sizeof(VideoCodecRecord));
  for (const VideoCodecRecord& codec :
       {VideoCodecRecord{Code("cvid"), "", "", "a.dll"}, {Code("mrle"), "", "", "b.dll"}})
    codecs.Append(&codec);
  constexpr std::pair<VideoCodecRecord, bool> kRows[] = {
      {{Code("mrle"), "", "", "c.dll"}, true},
      {{Code("msvc"), "", "", "b.dll"}, true},
      {{Code("msvc"), "", "", "c.dll"}, false},
      {{Code("MRLE"), "", "", "B.DLL"}, false},
  };
  for (const auto& [codec, listed] : kRows)
    EXPECT_EQ(IsListedVideoCodec(codecs, codec), listed) << codec.handler << codec.driver;
}

TEST(VideoCodecs, AreCollected) {
  const auto failing = [](const char* function, unsigned n) {
    return [=](Machine& machine) { machine.faults.FailNth(function, n, 1); };
  };
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    const char* expected;  // description|driver|version; of each
  } rows[] = {
      {"one driver, and one by its path", [](Machine&) {},
       "\xC4 \x80|a.dll|1.10;3|C:\\W\\a.dll|1.10;"},
      {"does not open", failing("ICOpen", 1), "|a.dll|1.10;3|C:\\W\\a.dll|1.10;"},
      {"does not answer", failing("ICGetInfo", 3), "\xC4 \x80|a.dll|1.10;|C:\\W\\a.dll|1.10;"},
      {"the list breaks off", failing("ICInfo", 3), "\xC4 \x80|a.dll|1.10;"},
      {"not converted",
       [](Machine& machine) { machine.faults.FailAlways("WideCharToMultiByte", 1); }, "||;"},
      {"no flags taken", failing("WideCharToMultiByte", 1),
       "\xC4 \x80|a.dll|1.10;3|C:\\W\\a.dll|1.10;"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    run.folder().Write("C/W/a.dll", test::Bytes({.strings = {{"FileVersion", "1.10"}}}));
    machine.files.MountDrive('C', run.folder().path() / "C");
    machine.system_folder = "C:\\W";
    machine.multimedia.video_codecs = {{Code("IV31"), "\xC4 \x80", "a.dll"},
                                       {Code("IV32"), "2", "a.dll"},
                                       {Code("mrle"), "3", "C:\\W\\a.dll"}};
    row.change(machine);
    RecordArray codecs;
    codecs.Create(sizeof(VideoCodecRecord));
    ListVideoCodecs(codecs);
    std::string came;
    for (int i = 0; i < codecs.count(); ++i) {
      const auto& codec = *codecs.GetAs<VideoCodecRecord>(i);
      came += std::string(codec.description) + "|" + codec.driver + "|" + codec.version + ";";
    }
    EXPECT_EQ(came, row.expected) << row.what;
    ExpectNothingOpen(machine, row.what);
  }
}

TEST(Cdroms, AsDevicesOrInTheScsiMap) {
  const std::string guid = "{4D36E965-E325-11CE-BFC1-08002BE10318}";
  const std::string system = "[HKLM\\SYSTEM\\CurrentControlSet\\";
  const std::string nt_class = system + "Control\\Class\\" + guid + "]\n\"Class\"=\"CDROM\"\n";
  const auto nt_device = [&](const std::string& id, const std::string& values) {
    const std::string key = system + "Enum\\IDE\\CdRom" + id;
    return key + "]\n\"ClassGUID\"=\"" + guid + "\"\n" + values + "\n" + key + "\\Control]\n";
  };
  const auto unit = [](const std::string& place, const std::string& values) {
    return "[HKLM\\HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + place.substr(0, 1) + "\\Scsi Bus " +
           place.substr(1, 1) + "\\Target Id " + place.substr(2, 1) + "\\Logical Unit Id " +
           place.substr(3, 1) + "]\n" + values + "\n";
  };
  const std::string cdrom = "\"Type\"=\"CdRomPeripheral\"\n\"Identifier\"=";
  const std::string map = unit("3333", cdrom + "\"Last\"") +
                          unit("1030", "\"Type\"=\"cdromPERIPHERAL\"\n\"Identifier\"=\"Far\"") +
                          unit("0003", cdrom + "\"Near\"") + unit("0040", cdrom + "\"beyond\"") +
                          unit("0001", "\"Type\"=\"DiskPeripheral\"\n\"Identifier\"=\"Disk\"") +
                          unit("0002", "\"Type\"=\"CdRomPeripheral\"");
  const std::string map_list =
      "CDROM (total 3) Description : Near|| Description : Far|| Description : Last||Ok";
  const struct {
    const char* what;
    bool is_nt, has_setup;
    std::string exports, expected;
  } rows[] = {
      {"Windows 2000, the map does not count", true, true,
       nt_class + map + nt_device("A\\1", "\"FriendlyName\"=\"One\"\n\"Mfg\"=\"M\"") +
           nt_device("B\\1", "\"DeviceDesc\"=\"Two\"") + system +
           "Services\\Cdrom]\n\"Autorun\"=dword:00000001\n",
       "CDROM (total 2) Description : One| Manufacturer : M| Driver date : | Autorun : Yes||"
       " Description : Two| Manufacturer : | Driver date : | Autorun : Yes||Ok"},
      {"Windows 98", false, true,
       "[HKLM\\Enum\\SCSI\\A\\1]\n\"Class\"=\"CDROM\"\n\"DeviceDesc\"=\"One\"\n"
       "\"CurrentDriveLetterAssignment\"=\"DE\"\n\"AutoInsertNotification\"=hex:00\n",
       "CDROM (total 1) Description : One| Manufacturer : | Driver date : | Autorun : No|"
       " Drive letters : DE||Ok"},
      {"no device, a map", true, true, nt_class + map, map_list},
      {"no set-up library, a map", true, false, map, map_list},
      {"no device, no map", true, true, nt_class, "CDROM (total 0) |Ok"},
      {"no set-up library, no map", true, false, "", "CDROM |Failed"},
      {"Windows 98 has no map", false, false, map, "CDROM |Failed"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    if (!row.is_nt) run.machine().version = {.major = 4, .minor = 10, .platform_id = 1};
    if (!row.has_setup) run.machine().libraries.Remove("SETUPAPI.DLL");
    EXPECT_FALSE(host::ReadRegText("REGEDIT4\n" + row.exports, run.machine().registry)) << row.what;
    run.Run("[MULTIMEDIA]\r\nCDROMs=1\r\n");
    EXPECT_EQ(Squeezed(run), row.expected) << row.what;
    ExpectNothingOpen(run.machine(), row.what);
  }
}

}  // namespace
}  // namespace hostscope
