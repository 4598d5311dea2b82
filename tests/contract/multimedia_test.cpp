// Codecs, wave and MIDI devices, and the way of their 16-bit texts to the code page.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

constexpr char kUntouched = '~';

// A record of one kind in a larger place.
template <typename Record>
struct Room {
  Room() { bytes.fill(kUntouched); }
  Record& record() { return *reinterpret_cast<Record*>(bytes.data()); }
  // How far it was written to.
  std::size_t Filled() const {
    return static_cast<std::size_t>(
        std::find_if(bytes.rbegin(), bytes.rend(), [](char byte) { return byte != kUntouched; })
            .base() -
        bytes.begin());
  }

  alignas(8) std::array<char, sizeof(Record) + 100> bytes;
};

std::string Numbers(std::initializer_list<long long> numbers) {
  std::string text;
  for (const long long number : numbers)
    text += (text.empty() ? "" : " ") + std::to_string(number);
  return text;
}

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
  // Size stated, answer, size afterwards, bytes filled.
  for (const auto& [size, expected] : {std::pair{0u, "11 0 4"},
                                       {3u, "11 3 4"},
                                       {4u, "0 4 4"},
                                       {72u, "0 72 72"},
                                       {919u, "0 919 919"},
                                       {920u, "0 920 920"},
                                       {1000u, "0 920 920"}}) {
    Room<ACMDRIVERDETAILSA> room;
    room.record().cbStruct = size;
    const MMRESULT answer = acmDriverDetailsA(drivers.found[0], &room.record(), 0);
    ExpectAnswer("size " + std::to_string(size), expected,
                 Numbers({answer, room.record().cbStruct, static_cast<long long>(room.Filled())}));
  }
  ACMDRIVERDETAILSA details = {};
  details.cbStruct = sizeof details;
  ExpectAnswer("no driver", MMSYSERR_INVALHANDLE, acmDriverDetailsA(nullptr, &details, 0));
}

TEST(VideoCodecContract, FindAndAsk) {
  const Place place;
  const auto code = [](const char* text) {
    return static_cast<DWORD>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
  };
  const auto find = [](DWORD type, DWORD handler, DWORD size) {
    ICINFO info = {};
    info.dwSize = size;
    return ICInfo(type, handler, &info) != 0;
  };
  const struct {
    const char* what;
    DWORD type, handler;
    bool expected;
  } rows[] = {{"first", ICTYPE_VIDEO, 0, true},
              {"last", ICTYPE_VIDEO, 2, true},
              {"behind the last", ICTYPE_VIDEO, 3, false},
              {"far behind", ICTYPE_VIDEO, 99, false},
              {"by code", ICTYPE_VIDEO, code("mrle"), true},
              {"by code of other case", ICTYPE_VIDEO, code("MRLE"), true},
              {"unknown code", ICTYPE_VIDEO, code("xxx1"), false},
              {"other type", code("audc"), code("mrle"), false}};
  for (const auto& row : rows) {
    ExpectAnswer(row.what, row.expected, find(row.type, row.handler, sizeof(ICINFO)));
    if (row.handler < 100) continue;  // only codes are opened
    const HIC opened = ICOpen(row.type, row.handler, ICMODE_QUERY);
    ExpectAnswer(std::string("open ") + row.what, row.expected, opened != nullptr);
    if (opened != nullptr) ExpectAnswer("close", ICERR_OK, ICClose(opened));
  }
  ExpectAnswer("size not stated", false, find(ICTYPE_VIDEO, 0, 4),
               {Platform::kWine, "does not look at the size"});
  ICINFO info = {};
  info.dwSize = sizeof info;
  EXPECT_TRUE(ICInfo(ICTYPE_VIDEO, 0, &info));
  ExpectAnswer("type", ICTYPE_VIDEO, info.fccType);
  ExpectAnswer("handler", code("mrle"), info.fccHandler);
  ExpectAnswer("driver",
               u"msrle32.dll" ==
                   std::u16string(std::begin(info.szDriver),
                                  std::find(std::begin(info.szDriver), std::end(info.szDriver), 0)),
               true);
  ExpectAnswer("description, before it is asked", 0, info.szDescription[0]);
  const HIC opened = ICOpen(ICTYPE_VIDEO, info.fccHandler, ICMODE_QUERY);
  for (const auto& [size, expected] :
       {std::pair{0u, "0 0"}, {567u, "0 0"}, {568u, "568 568"}, {600u, "568 568"}}) {
    Room<ICINFO> room;
    const LRESULT answer = ICGetInfo(opened, &room.record(), size);
    ExpectAnswer("size " + std::to_string(size), expected,
                 Numbers({answer, static_cast<long long>(answer > 0 ? room.record().dwSize : 0)}));
  }
  ExpectAnswer("close", ICERR_OK, ICClose(opened));
  ExpectAnswer("close again", ICERR_BADHANDLE, ICClose(opened));
  ExpectAnswer("ask when closed", ICERR_BADHANDLE, ICGetInfo(opened, &info, sizeof info));
}

template <typename Record, typename Function>
void ExpectCapabilities(const char* name, UINT count, Function function) {
  Room<Record> room;
  ExpectAnswer(std::string(name) + ", behind the last", MMSYSERR_BADDEVICEID,
               function(count, &room.record(), sizeof(Record)));
  ExpectAnswer(std::string(name) + ", no record", MMSYSERR_INVALPARAM,
               function(0, nullptr, sizeof(Record)));
  ExpectAnswer(std::string(name) + ", no device, no record", MMSYSERR_INVALPARAM,
               function(count, nullptr, sizeof(Record)));
  if (count == 0) return;
  for (const UINT size :
       {0u, 10u, static_cast<UINT>(sizeof(Record)) - 1, static_cast<UINT>(sizeof(Record)),
        static_cast<UINT>(sizeof(Record)) + 9}) {
    room = {};
    ExpectAnswer(
        std::string(name) + ", size " + std::to_string(size),
        Numbers({MMSYSERR_NOERROR,
                 static_cast<long long>(std::min<std::size_t>(size, sizeof(Record)))}),
        Numbers({function(0, &room.record(), size), static_cast<long long>(room.Filled())}));
  }
}

TEST(SoundDeviceContract, Capabilities) {
  Place place;
  place.TurnOnSound();
  ExpectAnswer("wave inputs", 1, waveInGetNumDevs());
  ExpectAnswer("wave outputs", 1, waveOutGetNumDevs());
  ExpectCapabilities<WAVEINCAPSA>("wave in", 1, waveInGetDevCapsA);
  ExpectCapabilities<WAVEOUTCAPSA>("wave out", 1, waveOutGetDevCapsA);
  ExpectCapabilities<MIDIINCAPSA>("MIDI in", midiInGetNumDevs(), midiInGetDevCapsA);
  ExpectCapabilities<MIDIOUTCAPSA>("MIDI out", midiOutGetNumDevs(), midiOutGetDevCapsA);
}

TEST(CodePageContract, WideCharToMultiByte) {
  const Place place;
  static constexpr WCHAR kText[] = {'a', 0xE4, 0x20AC, 0x4E2D, 0};
  static constexpr WCHAR kComposed[] = {'e', 0x301, 0};
  static constexpr WCHAR kEmpty[] = {0};
  const struct {
    const char* what;
    DWORD flags;
    const WCHAR* text;
    int length, size;
    const char* expected;
    KnownDifference known = {};
  } rows[] = {{"room", 0x210, kText, -1, 8, R"(5 a\xE4\x80?|~~~)"},
              {"no flags", 0, kText, -1, 8, R"(5 a\xE4\x80?|~~~)"},
              {"just fits", 0x210, kText, -1, 5, R"(5 a\xE4\x80?|~~~)"},
              {"one short", 0x210, kText, -1, 4, R"(0 a\xE4\x80?~~~~ 122)"},
              {"part", 0x210, kText, 2, 8, R"(2 a\xE4~~~~~~)"},
              {"size asked", 0x210, kText, -1, 0, "5 ~~~~~~~~"},
              {"empty", 0x210, kEmpty, -1, 8, "1 |~~~~~~~"},
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
    std::string bytes(8, kUntouched);
    const int answer = WideCharToMultiByte(CP_ACP, row.flags, row.text, row.length, bytes.data(),
                                           row.size, nullptr, nullptr);
    const DWORD error = GetLastError();
    ExpectAnswer(row.what, row.expected,
                 std::to_string(answer) + " " + Visible(bytes) +
                     (answer == 0 ? " " + std::to_string(error) : ""),
                 row.known);
  }
}

}  // namespace
}  // namespace contract
