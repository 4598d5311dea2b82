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
#include "util/text.h"

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

// The lines of one item, and its status word behind them.
std::string ItemOf(ReportRun& run, const std::string& key) {
  run.Run("[MULTIMEDIA]\r\n" + key + "=1\r\n");
  std::string lines = run.LastSection();
  EXPECT_TRUE(lines.ends_with("\r\n"));
  lines.resize(lines.size() - 2);  // the empty line of the network section
  return lines + run.Progress().back();
}

std::string Padded(std::string text, std::size_t width = 27) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

struct Row {
  const char* what;
  const char* key;
  std::function<void(Machine&)> arrange;
  std::string expected;
};

void ExpectItems(std::span<const Row> rows) {
  for (const Row& row : rows) {
    ReportRun run;
    row.arrange(run.machine());
    EXPECT_EQ(ItemOf(run, row.key), row.expected) << row.key << ", " << row.what;
    for (const char* const kind : {"key", "compressor", "device set", "file"})
      EXPECT_FALSE(run.machine().handles.OpenObjects().contains(kind)) << row.what << ", " << kind;
    for (const char* const library : {"WINMM.DLL", "MSACM32.DLL", "MSVFW32.DLL"})
      EXPECT_EQ(run.machine().libraries.References(library), 0u) << row.what << ", " << library;
  }
}

constexpr char kOk[] = "Ok";
std::string Status(const char* progress, const char* word) {
  return Padded(progress, 25) + word;
}
std::string Failed(const char* name) {
  return Padded(name) + "\r\n" + Status((std::string(name) + "...").c_str(), "Failed");
}

TEST(MultimediaItems, Codecs) {
  const std::string long_name(200, 'n');
  const auto audio = [&](Machine& machine) {
    machine.multimedia.audio_codecs = {{0x04010565, "Microsoft ADPCM CODEC"}, {1, long_name}};
  };
  const auto without_library = [](const char* name) {
    return [name](Machine& machine) { machine.libraries.Remove(name); };
  };
  const std::string audio_label = Padded("Audio codecs (total 2)");
  const std::string audio_ok = "\r\n" + Status("Audio codecs...", kOk);
  const Row rows[] = {
      {"none", "AudioCodecs", [](Machine&) {}, "Audio codecs (total 0)" + audio_ok},
      {"two", "AudioCodecs", audio,
       audio_label + Padded("Microsoft ADPCM CODEC", 52) + " ver 4.01\r\n" + Padded("") +
           std::string(127, 'n') + " ver 0.00\r\n" + audio_ok},
      {"a driver does not answer", "AudioCodecs",
       [&](Machine& machine) {
         audio(machine);
         machine.faults.FailNth("acmDriverDetailsA", 2, MMSYSERR_NODRIVER);
       },
       audio_label + Padded("Microsoft ADPCM CODEC", 52) + " ver 4.01\r\n" + Padded("", 79) +
           " ver \r\n" + audio_ok},
      {"the enumeration fails", "AudioCodecs",
       [&](Machine& machine) {
         audio(machine);
         machine.faults.FailAlways("acmDriverEnum", MMSYSERR_NODRIVER);
       },
       Failed("Audio codecs")},
      {"no library", "AudioCodecs", without_library("MSACM32.DLL"), Failed("Audio codecs")},
      {"not all functions", "AudioCodecs",
       [](Machine& machine) { machine.libraries.RemoveExport("MSACM32.DLL", "acmDriverDetailsA"); },
       Failed("Audio codecs")},
      {"no library", "VideoCodecs", without_library("MSVFW32.DLL"),
       "Video codecs (total 0)\r\n" + Status("Video codecs...", kOk)},
  };
  ExpectItems(rows);
}

constexpr DWORD Code(const char (&text)[5]) {
  DWORD code = 0;
  for (int i = 3; i >= 0; --i)
    code = code << 8 | static_cast<BYTE>(text[i]);
  return code;
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
  const std::string long_text(128, 'd');
  const auto failing = [](const char* function, unsigned n) {
    return [=](Machine& machine) { machine.faults.FailNth(function, n, 1); };
  };
  const struct {
    const char* what;
    std::vector<host::VideoCodec> codecs;
    std::function<void(Machine&)> change;
    const char* expected;  // description|driver|version; of each
  } rows[] = {
      {"different",
       {{Code("cvid"), "\xC4 \x80", "a.dll"}, {Code("mrle"), "RLE", "b.dll"}},
       {},
       "\xC4 \x80|a.dll|1.10.0.11;RLE|b.dll|;"},
      {"one driver",
       {{Code("IV31"), "1", "a.dll"}, {Code("IV32"), "2", "a.dll"}, {Code("mrle"), "3", "b.dll"}},
       {},
       "1|a.dll|1.10.0.11;3|b.dll|;"},
      {"a driver by its path",
       {{Code("cvid"), "1", "C:\\WINNT\\system32\\a.dll"}},
       {},
       "1|C:\\WINNT\\system32\\a.dll|1.10.0.11;"},
      {"does not open",
       {{Code("cvid"), "1", "a.dll"}, {Code("mrle"), "2", "b.dll"}},
       failing("ICOpen", 1),
       "|a.dll|1.10.0.11;2|b.dll|;"},
      {"does not answer",
       {{Code("cvid"), "1", "a.dll"}, {Code("mrle"), "2", "b.dll"}},
       failing("ICGetInfo", 2),
       "1|a.dll|1.10.0.11;|b.dll|;"},
      {"the list breaks off",
       {{Code("cvid"), "1", "a.dll"}, {Code("mrle"), "2", "b.dll"}},
       failing("ICInfo", 2),
       "1|a.dll|1.10.0.11;"},
      {"not converted",
       {{Code("cvid"), "1", "a.dll"}},
       [](Machine& machine) { machine.faults.FailAlways("WideCharToMultiByte", 1); },
       "||;"},
      {"a code page without flags",
       {{Code("cvid"), "1", "a.dll"}},
       failing("WideCharToMultiByte", 1),
       "1|a.dll|1.10.0.11;"},
  };
  for (const auto& row : rows) {
    ReportRun run;
    Machine& machine = run.machine();
    run.folder().Write("C/WINNT/system32/a.dll", test::Bytes({.fixed = {{1, 10, 0, 11}}}));
    machine.files.MountDrive('C', run.folder().path() / "C");
    machine.multimedia.video_codecs = row.codecs;
    if (row.change) row.change(machine);
    RecordArray codecs;
    codecs.Create(sizeof(VideoCodecRecord));
    ListVideoCodecs(codecs);
    std::string came;
    for (int i = 0; i < codecs.count(); ++i) {
      const auto& codec = *codecs.GetAs<VideoCodecRecord>(i);
      came += std::string(codec.description) + "|" + codec.driver + "|" + codec.version + ";";
    }
    EXPECT_EQ(came, row.expected) << row.what;
    EXPECT_EQ(machine.handles.OpenObjects().count("compressor"), 0u) << row.what;
  }
}

TEST(MultimediaItems, VideoCodecLines) {
  const std::string unterminated(128, 'd');
  const Row rows[] = {
      {"two", "VideoCodecs",
       [&](Machine& machine) {
         machine.multimedia.video_codecs = {{Code("cvid"), "Cinepak Codec by Radius", unterminated},
                                            {Code("mrle"), unterminated, "b.dll"}};
       },
       Padded("Video codecs (total 2)") + Padded("Cinepak Codec by Radius", 52) + " ver \r\n" +
           Padded("") + std::string(127, 'd') + " ver \r\n\r\n" + Status("Video codecs...", kOk)}};
  ExpectItems(rows);
}

TEST(MultimediaItems, WaveAndMidiDevices) {
  const std::string long_name(40, 'n');
  const auto devices = [&](Machine& machine) {
    machine.multimedia = {
        .wave_inputs = {{0x600, "In"}, {0, long_name}},
        .wave_outputs = {{0xFFF, "Out"}},
        .midi_inputs = {"MIDI In", long_name},
        .midi_outputs = {{4, 20, 18, 0xFFFF, "FM"}, {7, 65535, 0, 0xA, long_name}}};
  };
  const auto failing = [&](const char* function, unsigned n) {
    return [=](Machine& machine) {
      devices(machine);
      machine.faults.FailNth(function, n, MMSYSERR_NODRIVER);
    };
  };
  const std::string cut(31, 'n');
  const std::string first = "In, max format: 44.1 kHz, stereo, 8-bit\r\n";
  const std::string second = cut + ", max format: \r\n";
  const std::string in_end = "\r\n" + Status("Wave input...", kOk);
  const std::string blanks = Padded("");
  std::vector<Row> rows = {
      {"two", "WaveIn", devices, Padded("Wave input (total 2)") + first + blanks + second + in_end},
      {"one does not answer", "WaveIn", failing("waveInGetDevCapsA", 1),
       Padded("Wave input (total 1)") + second + in_end},
      {"one", "WaveOut", devices,
       Padded("Wave output (total 1)") + "Out, max format: 44.1 kHz, stereo, 16-bit\r\n\r\n" +
           Status("Wave output...", kOk)},
      {"the only one does not answer", "WaveOut", failing("waveOutGetDevCapsA", 1),
       Failed("Wave output")},
      {"two", "MIDIIn", devices,
       Padded("MIDI input (total 2)") + "MIDI In\r\n" + blanks + cut + "\r\n\r\n" +
           Status("MIDI input...", kOk)},
      {"two", "MIDIOut", devices,
       Padded("MIDI output (total 2)") + "Name           :  FM\r\n" + blanks +
           "Type           :  FM synthesizer\r\n" + blanks + "Voices         :  20\r\n" + blanks +
           "Notes          :  18\r\n" + blanks + "Channels       :  0xFFFF\r\n\r\n" + blanks +
           "Name           :  " + cut + "\r\n" + blanks + "Type           :  unknown\r\n" + blanks +
           "Voices         :  65535\r\n" + blanks + "Notes          :  0\r\n" + blanks +
           "Channels       :  0x000A\r\n\r\n" + Status("MIDI output...", kOk)},
  };
  for (const auto& [key, name] : {std::pair{"WaveIn", "Wave input"},
                                  {"WaveOut", "Wave output"},
                                  {"MIDIIn", "MIDI input"},
                                  {"MIDIOut", "MIDI output"}}) {
    rows.push_back({"no device", key, [](Machine&) {}, Failed(name)});
    rows.push_back({"no library", key,
                    [&](Machine& machine) {
                      devices(machine);
                      machine.libraries.Remove("WINMM.DLL");
                    },
                    Failed(name)});
  }
  ExpectItems(rows);
}

void State(Machine& machine, const std::string& exports) {
  EXPECT_FALSE(host::ReadRegText("REGEDIT4\n" + exports, machine.registry)) << exports;
}

TEST(MultimediaItems, Cdroms) {
  const std::string guid = "{4D36E965-E325-11CE-BFC1-08002BE10318}";
  const std::string system = "HKLM\\SYSTEM\\CurrentControlSet\\";
  const std::string nt_class =
      "[" + system + "Control\\Class\\" + guid + "]\n\"Class\"=\"CDROM\"\n";
  const auto nt_device = [&](const std::string& id, const std::string& values) {
    const std::string key = "[" + system + "Enum\\IDE\\CdRom" + id;
    return key + "]\n\"ClassGUID\"=\"" + guid + "\"\n" + values + key + "\\Control]\n";
  };
  const auto unit = [](const std::string& place, const char* type, const char* identifier) {
    return "[HKLM\\HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port " + place.substr(0, 1) + "\\Scsi Bus " +
           place.substr(1, 1) + "\\Target Id " + place.substr(2, 1) + "\\Logical Unit Id " +
           place.substr(3, 1) + "]\n\"Type\"=\"" + type + "\"\n" +
           (identifier != nullptr ? std::string("\"Identifier\"=\"") + identifier + "\"\n" : "");
  };
  const std::string map =
      unit("1030", "cdromPERIPHERAL", "Far") + unit("0003", "CdRomPeripheral", "Near") +
      unit("0001", "DiskPeripheral", "Disk") + unit("0002", "CdRomPeripheral", nullptr) +
      unit("3333", "CdRomPeripheral", "Last") + unit("0040", "CdRomPeripheral", "beyond");
  const auto stating = [](const std::string& exports) {
    return [=](Machine& machine) { State(machine, exports); };
  };
  const auto line = [](const std::string& label, const char* field, const std::string& value) {
    return Padded(label) + Padded(field, 15) + ":  " + value + "\r\n";
  };
  const std::string ok = Status("CDROM...", kOk);
  const std::string map_list = line("CDROM (total 3)", "Description", "Near") + "\r\n" +
                               line("", "Description", "Far") + "\r\n" +
                               line("", "Description", "Last") + "\r\n" + ok;
  const Row rows[] = {
      {"Windows 2000, the map does not count", "CDROMs",
       stating(nt_class + map + nt_device("A\\1", "\"FriendlyName\"=\"One\"\n\"Mfg\"=\"M\"\n") +
               nt_device("B\\1", "\"DeviceDesc\"=\"Two\"\n") + "[" + system +
               "Services\\Cdrom]\n\"Autorun\"=dword:00000001\n"),
       line("CDROM (total 2)", "Description", "One") + line("", "Manufacturer", "M") +
           line("", "Driver date", "") + line("", "Autorun", "Yes") + "\r\n" +
           line("", "Description", "Two") + line("", "Manufacturer", "") +
           line("", "Driver date", "") + line("", "Autorun", "Yes") + "\r\n" + ok},
      {"Windows 98", "CDROMs",
       [&](Machine& machine) {
         machine.version = {.major = 4, .minor = 10, .platform_id = 1};
         State(machine,
               "[HKLM\\Enum\\SCSI\\A\\1]\n\"Class\"=\"CDROM\"\n\"DeviceDesc\"=\"One\"\n"
               "\"CurrentDriveLetterAssignment\"=\"DE\"\n\"AutoInsertNotification\"=hex:00\n" +
                   map);
       },
       line("CDROM (total 1)", "Description", "One") + line("", "Manufacturer", "") +
           line("", "Driver date", "") + line("", "Autorun", "No") +
           line("", "Drive letters", "DE") + "\r\n" + ok},
      {"no device, a map", "CDROMs", stating(nt_class + map), map_list},
      {"no set-up library, a map", "CDROMs",
       [&](Machine& machine) {
         State(machine, map);
         machine.libraries.Remove("SETUPAPI.DLL");
       },
       map_list},
      {"no device, no map", "CDROMs", stating(nt_class), Padded("CDROM (total 0)") + "\r\n" + ok},
      {"no set-up library, no map", "CDROMs",
       [](Machine& machine) { machine.libraries.Remove("SETUPAPI.DLL"); }, Failed("CDROM")},
      {"Windows 98 has no map", "CDROMs",
       [&](Machine& machine) {
         machine.version = {.major = 4, .minor = 10, .platform_id = 1};
         State(machine, map);
         machine.libraries.Remove("SETUPAPI.DLL");
       },
       Failed("CDROM")},
  };
  ExpectItems(rows);
}

}  // namespace
}  // namespace hostscope
