// CD-ROM drives, codecs, wave and MIDI devices on machines of several kinds, and with platform
// calls failing.

#include <gtest/gtest.h>

#include "probes/devices/audio_codecs.h"
#include "probes/devices/cdroms.h"
#include "probes/devices/midi_devices.h"
#include "probes/devices/video_codecs.h"
#include "probes/devices/wave_devices.h"
#include "tests/support/four_character_code.h"
#include "tests/support/registry_notation.h"
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

// The lines below the banner, ended by "|", runs of blanks made one, and the last item's status
// word behind them.
std::string Squeezed(ReportRun& run) {
  std::string text = run.SqueezedSection();
  text.pop_back();  // the empty line of the network section
  return text + run.Progress().back().substr(25);
}

void ExpectNothingOpen(Machine& machine, const char* what) {
  for (const char* const kind : {"key", "compressor", "device set", "file"})
    EXPECT_FALSE(machine.handles.OpenObjects().contains(kind)) << what << ", " << kind;
  for (const char* const library : {"WINMM.DLL", "MSACM32.DLL", "MSVFW32.DLL"})
    EXPECT_EQ(machine.libraries.References(library), 0u) << what << ", " << library;
}

const std::string kLongName(128, 'n');

void DescribeMultimedia(Machine& machine) {
  machine.multimedia = {
      .audio_codecs = {{0x04000000, "Microsoft ADPCM CODEC"}, {0xFFFFFFFF, kLongName}},
      .video_codecs = {{FourCharacterCode("cvid"), "Cinepak Codec by Radius", kLongName},
                       {FourCharacterCode("mrle"), kLongName, "b.dll"}},
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
      "4.00\r\n" +
          blanks + codec +
          " ver 255.255\r\n\r\n"
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
  ExpectNothingOpen(run.machine(), "");
}

TEST(VideoCodecs, AreListedOnce) {
  const ReportRun run;
  RecordArray codecs;
  codecs.Create(sizeof(VideoCodecRecord));
  for (const VideoCodecRecord& codec :
       {VideoCodecRecord{FourCharacterCode("cvid"), "", "", "a.dll"},
        {FourCharacterCode("mrle"), "", "", "b.dll"}})
    codecs.Append(&codec);
  constexpr std::pair<VideoCodecRecord, bool> kRows[] = {
      {{FourCharacterCode("mrle"), "", "", "c.dll"}, true},
      {{FourCharacterCode("msvc"), "", "", "b.dll"}, true},
      {{FourCharacterCode("msvc"), "", "", "c.dll"}, false},
      {{FourCharacterCode("MRLE"), "", "", "B.DLL"}, false},
  };
  for (const auto& [codec, listed] : kRows)
    EXPECT_EQ(IsListedVideoCodec(codecs, codec), listed) << codec.handler << codec.driver;
}

TEST(VideoCodecs, AreCollected) {
  const auto answering = [](LRESULT (*answer)(HIC, ICINFO*, DWORD)) {
    return [=](Machine& machine) {
      machine.libraries.Add(
          {.name = "MSVFW32.DLL", .exports = {{"ICGetInfo", host::Export(answer)}}});
    };
  };
  const struct {
    const char* what;
    std::function<void(Machine&)> change;
    const char* expected;  // description|driver|version; of each
  } rows[] = {
      {"one driver, and one by its path", [](Machine&) {},
       "\xC4 \x80|a.dll|1.10;3|C:\\W\\a.dll|1.10;"},
      {"leaves driver and code to the manager, and says 0",
       answering([](HIC, ICINFO* info, DWORD) -> LRESULT {
         *info = {};
         info->szDescription[0] = u'X';
         return 0;
       }),
       "X|a.dll|1.10;X|C:\\W\\a.dll|1.10;"},
      {"answers an error, the record spoilt", answering([](HIC, ICINFO* info, DWORD) -> LRESULT {
         info->szDescription[0] = info->szDriver[0] = u'X';
         return -1;
       }),
       "|a.dll|1.10;|C:\\W\\a.dll|1.10;"},
      {"does not describe itself", answering([](HIC, ICINFO* info, DWORD size) -> LRESULT {
         info->szDriver[0] = u'X';
         return size;
       }),
       "|a.dll|1.10;|C:\\W\\a.dll|1.10;"},
      {"not converted",
       [](Machine& machine) { machine.faults.FailAlways("WideCharToMultiByte", 1); }, "||;"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    run.folder().Write("C/W/a.dll", test::Bytes({.strings = {{"FileVersion", "1.10"}}}));
    machine.files.MountDrive('C', run.folder().path() / "C");
    machine.system_folder = "C:\\W";
    machine.multimedia.video_codecs = {{FourCharacterCode("IV31"), "\xC4 \x80", "a.dll"},
                                       {FourCharacterCode("IV32"), "2", "a.dll"},
                                       {FourCharacterCode("mrle"), "3", "C:\\W\\a.dll"}};
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
    // Files are read for what is listed alone.
    EXPECT_EQ(machine.faults.CallCount("GetFileVersionInfoSizeA"), codecs.count()) << row.what;
    ExpectNothingOpen(machine, row.what);
  }
}

TEST(Cdroms, AsDevicesOrInTheScsiMap) {
  const std::string nt_class = "[class 965 CDROM]\n";
  const auto unit = [](const std::string& place, const std::string& values) {
    return "[HKLM\\HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + place.substr(0, 1) + "\\Scsi Bus " +
           place.substr(1, 1) + "\\Target Id " + place.substr(2, 1) + "\\Logical Unit Id " +
           place.substr(3, 1) + "]\n" + values + "\n";
  };
  const std::string cdrom = "\"Type\"=\"CdRomPeripheral\"\n\"Identifier\"=";
  const std::string map =
      unit("3000", cdrom + "\"Port 3\"") + unit("0300", cdrom + "\"Bus 3\"") +
      unit("0030", "\"Type\"=\"cdromPERIPHERAL\"\n\"Identifier\"=\"Target 3\"") +
      unit("0003", cdrom + "\"Unit 3\"") + unit("0040", cdrom + "\"beyond\"") +
      unit("0001", "\"Type\"=\"DiskPeripheral\"\n\"Identifier\"=\"Disk\"") +
      unit("0002", "\"Type\"=\"CdRomPeripheral\"");
  const std::string map_list =
      "CDROM (total 4) Description : Unit 3|| Description : Target 3|| Description : Bus 3|| "
      "Description : Port 3||Ok";
  const struct {
    const char* what;
    bool is_nt, has_setup;
    std::string exports, expected;
  } rows[] = {
      {"Windows 2000, the map does not count", true, true,
       nt_class + map +
           "[device 965 IDE\\A\\1]\n\"FriendlyName\"=\"One\"  \"Mfg\"=\"M\"\n"
           "[device 965 IDE\\B\\1]\n\"DeviceDesc\"=\"Two\"\n"
           "[CCS\\Services\\Cdrom]\n\"Autorun\"=dword:00000001\n",
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
    test::ReadRegistryNotation(run.machine(), row.exports);
    run.Run("[MULTIMEDIA]\r\nCDROMs=1\r\n");
    EXPECT_EQ(Squeezed(run), row.expected) << row.what;
    ExpectNothingOpen(run.machine(), row.what);
  }
}

}  // namespace
}  // namespace hostscope
