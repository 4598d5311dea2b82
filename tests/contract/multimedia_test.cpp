// Codecs, wave and MIDI devices, and the way of their 16-bit texts to the code page.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/contract/contract_machine.h"
#include "tests/support/four_character_code.h"

namespace contract {
namespace {

std::string Numbers(std::initializer_list<long long> numbers) {
  std::string text;
  for (const long long number : numbers)
    text += (text.empty() ? "" : " ") + std::to_string(number);
  return text;
}

// A record with junk in it. A name that the platform has given has its end.
template <typename Record>
Record Junk() {
  Record record;
  std::fill_n(reinterpret_cast<char*>(&record), sizeof record, '~');
  return record;
}

template <std::size_t kSize>
bool HasName(const CHAR (&field)[kSize]) {
  return field[0] != '~' && std::find(field, field + kSize, '\0') != field + kSize;
}

BOOL CALLBACK AddDriver(HACMDRIVERID driver, DWORD_PTR instance, DWORD) {
  reinterpret_cast<std::vector<HACMDRIVERID>*>(instance)->push_back(driver);
  return TRUE;
}

TEST(AudioCodecContract, EnumerateAndTellDetails) {
  const Place place;
  std::vector<HACMDRIVERID> drivers;
  ExpectAnswer("enumerate", 0, acmDriverEnum(AddDriver, reinterpret_cast<DWORD_PTR>(&drivers), 0));
  ExpectAnswer("several", true, drivers.size() > 1);
  for (const HACMDRIVERID driver : drivers) {
    auto details = Junk<ACMDRIVERDETAILSA>();
    details.cbStruct = sizeof details;
    ExpectAnswer("details", 0, acmDriverDetailsA(driver, &details, 0));
    ExpectAnswer("size", 920, details.cbStruct);
    ExpectAnswer("name", true, HasName(details.szLongName));
  }
}

TEST(VideoCodecContract, FindAndAsk) {
  const Place place;
  for (const auto& [number, expected] : {std::pair{0u, true}, {2u, true}, {3u, false}}) {
    const std::string what = std::to_string(number);
    ICINFO info = {};
    info.dwSize = sizeof info;
    ExpectAnswer(what, expected, ICInfo(ICTYPE_VIDEO, number, &info) != 0);
    if (number != 0) continue;
    ExpectAnswer("codes", Numbers({ICTYPE_VIDEO, FourCharacterCode("mrle")}),
                 Numbers({info.fccType, info.fccHandler}));
    WCHAR* const end = std::find(info.szDriver, std::end(info.szDriver), 0);
    ExpectAnswer("driver", "msrle32.dll", std::string(info.szDriver, end));
    ExpectAnswer("description, not asked yet", 0, info.szDescription[0]);
  }
  if (ThisPlatform() == Platform::kHostLayer)  // others write to it
    ExpectAnswer("no record", false, ICInfo(ICTYPE_VIDEO, 0, nullptr) != 0);
  // The case of the code does not count.
  const HIC opened = ICOpen(ICTYPE_VIDEO, FourCharacterCode("MRLE"), ICMODE_QUERY);
  ICINFO info = {};
  ExpectAnswer("ask", 568, ICGetInfo(opened, &info, sizeof info));
  ExpectAnswer("description", true, info.szDescription[0] != 0);
  ExpectAnswer("close", ICERR_OK, ICClose(opened));
}

template <typename Record, typename Function>
void ExpectCapabilities(const std::string& what, UINT count, Function function) {
  for (UINT device = 0; device < count; ++device) {
    auto record = Junk<Record>();
    ExpectAnswer(what, 0, function(device, &record, sizeof record));
    ExpectAnswer(what + ", name", true, HasName(record.szPname));
  }
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
    int size;
    const char* expected;
    KnownDifference known = {};
  } rows[] = {
      {"room", 0x210, kText, 8, R"(5 a\xE4\x80?|~~~)"},
      {"no flags", 0, kText, 5, R"(5 a\xE4\x80?|~~~)"},
      {"one short", 0x210, kText, 4, R"(0 a\xE4\x80?~~~~ 122)"},
      {"composed",
       0x210,
       kComposed,
       8,
       R"(2 \xE9|~~~~~~)",
       {Platform::kHostLayer, "no machine can state such a text"}},
  };
  for (const auto& row : rows) {
    std::string bytes(8, '~');
    const int answer = WideCharToMultiByte(CP_ACP, row.flags, row.text, -1, bytes.data(), row.size,
                                           nullptr, nullptr);
    const std::string error = answer == 0 ? " " + std::to_string(GetLastError()) : "";
    ExpectAnswer(row.what, row.expected, std::to_string(answer) + " " + Visible(bytes) + error,
                 row.known);
  }
}

}  // namespace
}  // namespace contract
