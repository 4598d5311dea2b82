// Codecs, wave and MIDI devices, and the way of their 16-bit texts to the code page.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

std::string Numbers(std::initializer_list<long long> numbers) {
  std::string text;
  for (const long long number : numbers)
    text += (text.empty() ? "" : " ") + std::to_string(number);
  return text;
}

// A record in a larger place.
template <typename Record>
struct Room {
  alignas(Record) char bytes[sizeof(Record) + 100];
  Room() { std::fill(std::begin(bytes), std::end(bytes), '~'); }
  Record& record() { return *reinterpret_cast<Record*>(bytes); }
  // How far it was written to.
  long long Filled() const {
    return static_cast<long long>(std::string_view(bytes, sizeof bytes).find_last_not_of('~') + 1);
  }
};

struct Drivers {
  std::size_t wanted;
  std::vector<HACMDRIVERID> found;
};

BOOL CALLBACK AddDriver(HACMDRIVERID driver, DWORD_PTR instance, DWORD) {
  Drivers& drivers = *reinterpret_cast<Drivers*>(instance);
  drivers.found.push_back(driver);
  return drivers.found.size() < drivers.wanted;
}

TEST(AudioCodecContract, EnumerateAndTellDetails) {
  const Place place;
  Drivers drivers{2, {}};
  const auto instance = reinterpret_cast<DWORD_PTR>(&drivers);
  ExpectAnswer("enumerate", 0, acmDriverEnum(AddDriver, instance, 0));
  ExpectAnswer("stopped", 2, static_cast<long long>(drivers.found.size()));
  ExpectAnswer("no callback", MMSYSERR_INVALPARAM, acmDriverEnum(nullptr, 0, 0));
  ExpectAnswer("flag", MMSYSERR_INVALFLAG, acmDriverEnum(AddDriver, instance, 1));
  // The size stated; answer, size afterwards, bytes filled.
  for (const auto& [size, expected] :
       {std::pair{3u, "11 3 4"}, {4u, "0 4 4"}, {919u, "0 919 919"}, {1000u, "0 920 920"}}) {
    Room<ACMDRIVERDETAILSA> room;
    room.record().cbStruct = size;
    const MMRESULT answer = acmDriverDetailsA(drivers.found[0], &room.record(), 0);
    ExpectAnswer("size " + std::to_string(size), expected,
                 Numbers({answer, room.record().cbStruct, room.Filled()}));
  }
  ACMDRIVERDETAILSA details = {};
  details.cbStruct = sizeof details;
  ExpectAnswer("no driver", MMSYSERR_INVALHANDLE, acmDriverDetailsA(nullptr, &details, 0));
}

constexpr DWORD Code(const char (&text)[5]) {
  return static_cast<DWORD>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}

TEST(VideoCodecContract, Find) {
  const Place place;
  static constexpr struct {
    const char* what;
    DWORD type, handler;
    bool expected;
    DWORD size = sizeof(ICINFO);
    KnownDifference known = {};
  } kRows[] = {{"first", ICTYPE_VIDEO, 0, true},
               {"last", ICTYPE_VIDEO, 2, true},
               {"behind the last", ICTYPE_VIDEO, 3, false},
               {"by code of other case", ICTYPE_VIDEO, Code("MRLE"), true},
               {"unknown code", ICTYPE_VIDEO, Code("xxx1"), false},
               {"other type", Code("audc"), Code("mrle"), false},
               {"size", ICTYPE_VIDEO, 0, false, 4, {Platform::kWine, "does not look at the size"}}};
  for (const auto& row : kRows) {
    ICINFO info = {};
    info.dwSize = row.size;
    ExpectAnswer(row.what, row.expected, ICInfo(row.type, row.handler, &info) != 0, row.known);
    if (!row.expected || row.handler != 0) continue;
    ExpectAnswer("codes", Numbers({ICTYPE_VIDEO, Code("mrle")}),
                 Numbers({info.fccType, info.fccHandler}));
    WCHAR* const end = std::find(info.szDriver, std::end(info.szDriver), 0);
    ExpectAnswer("driver", "msrle32.dll", std::string(info.szDriver, end));
    ExpectAnswer("description, not asked yet", 0, info.szDescription[0]);
  }
}

TEST(VideoCodecContract, OpenAndAsk) {
  const Place place;
  ExpectAnswer("unknown code", true, ICOpen(ICTYPE_VIDEO, Code("xxx1"), ICMODE_QUERY) == nullptr);
  const HIC opened = ICOpen(ICTYPE_VIDEO, Code("MRLE"), ICMODE_QUERY);
  for (const auto& [size, expected] : {std::pair{0u, 0}, {567u, 0}, {568u, 568}, {600u, 568}}) {
    Room<ICINFO> room;
    ExpectAnswer("size " + std::to_string(size), expected, ICGetInfo(opened, &room.record(), size));
  }
  ExpectAnswer("close", ICERR_OK, ICClose(opened));
  ExpectAnswer("close again", ICERR_BADHANDLE, ICClose(opened));
  Room<ICINFO> room;
  ExpectAnswer("ask when closed", ICERR_BADHANDLE, ICGetInfo(opened, &room.record(), 568));
}

template <typename Record, typename Function>
void ExpectCapabilities(const std::string& what, UINT count, Function function) {
  const auto ask = [&](UINT device, UINT size) {
    Room<Record> room;
    const MMRESULT answer = function(device, &room.record(), size);
    return Numbers({answer, room.Filled()});
  };
  ExpectAnswer(what + ", behind the last", "2 0", ask(count, sizeof(Record)));
  ExpectAnswer(what + ", no record", MMSYSERR_INVALPARAM, function(count, nullptr, 99));
  if (count == 0) return;
  ExpectAnswer(what + ", nothing", "0 0", ask(0, 0));
  ExpectAnswer(what + ", short", "0 10", ask(0, 10));
  ExpectAnswer(what + ", long", Numbers({0, sizeof(Record)}), ask(0, sizeof(Record) + 9));
}

TEST(SoundDeviceContract, Capabilities) {
  Place place;
  place.TurnOnSound();
  ExpectAnswer("wave devices", "1 1", Numbers({waveInGetNumDevs(), waveOutGetNumDevs()}));
  ExpectCapabilities<WAVEINCAPSA>("wave in", 1, waveInGetDevCapsA);
  ExpectCapabilities<WAVEOUTCAPSA>("wave out", 1, waveOutGetDevCapsA);
  ExpectCapabilities<MIDIINCAPSA>("MIDI in", midiInGetNumDevs(), midiInGetDevCapsA);
  ExpectCapabilities<MIDIOUTCAPSA>("MIDI out", midiOutGetNumDevs(), midiOutGetDevCapsA);
}

TEST(CodePageContract, WideCharToMultiByte) {
  const Place place;
  static constexpr WCHAR kText[] = {'a', 0xE4, 0x20AC, 0x4E2D, 0};
  static constexpr WCHAR kComposed[] = {'e', 0x301, 0};
  const struct {
    const char* what;
    DWORD flags;
    const WCHAR* text;
    int length, size;
    const char* expected;
    KnownDifference known = {};
  } rows[] = {{"room", 0x210, kText, -1, 8, R"(5 a\xE4\x80?|~~~)"},
              {"no flags", 0, kText, -1, 5, R"(5 a\xE4\x80?|~~~)"},
              {"one short", 0x210, kText, -1, 4, R"(0 a\xE4\x80?~~~~ 122)"},
              {"part", 0x210, kText, 2, 8, R"(2 a\xE4~~~~~~)"},
              {"size asked", 0x210, kText, -1, 0, "5 ~~~~~~~~"},
              {"composed",
               0x210,
               kComposed,
               -1,
               8,
               R"(2 \xE9|~~~~~~)",
               {Platform::kHostLayer, "no machine can state such a text"}},
              {"unknown flag", 0x80000000, kText, -1, 8, "0 ~~~~~~~~ 1004"},
              {"no text", 0x210, nullptr, -1, 8, "0 ~~~~~~~~ 87"},
              {"no length", 0x210, kText, 0, 8, "0 ~~~~~~~~ 87"},
              {"negative size", 0x210, kText, -1, -1, "0 ~~~~~~~~ 87"}};
  for (const auto& row : rows) {
    std::string bytes(8, '~');
    const int answer = WideCharToMultiByte(CP_ACP, row.flags, row.text, row.length, bytes.data(),
                                           row.size, nullptr, nullptr);
    const std::string error = answer == 0 ? " " + std::to_string(GetLastError()) : "";
    ExpectAnswer(row.what, row.expected, std::to_string(answer) + " " + Visible(bytes) + error,
                 row.known);
  }
}

}  // namespace
}  // namespace contract
