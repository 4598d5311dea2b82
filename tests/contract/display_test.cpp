// The display and its modes, and joysticks. What they show is the machine's own;
// what is held here is how the calls take their arguments.
#include <gtest/gtest.h>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class DisplayContract : public testing::Test {
 protected:
  Place place;
};

TEST_F(DisplayContract, DeviceContexts) {
  HDC const display = CreateICA("DISPLAY", nullptr, nullptr, nullptr);
  ASSERT_NE(nullptr, display);
  for (const int index : {HORZRES, VERTRES, BITSPIXEL})
    EXPECT_GT(GetDeviceCaps(display, index), 0) << index;
  ExpectAnswer("deleted", 1, DeleteDC(display));
  ExpectAnswer("another driver", 1, CreateICA("nosuch", nullptr, nullptr, nullptr) == nullptr);
  HDC const dc = GetWindowDC(GetDesktopWindow());
  TEXTMETRICA metrics = {};
  ExpectAnswer("metrics", 1, GetTextMetricsA(dc, &metrics));
  ExpectAnswer("height", 16, metrics.tmHeight);
  ExpectAnswer("released", 1, ReleaseDC(GetDesktopWindow(), dc));
  ExpectAnswer("of no window", 1, GetWindowDC(reinterpret_cast<HWND>(0x7F7C)) == nullptr);
}

TEST_F(DisplayContract, Modes) {
  const auto list =
      FindIn<BOOL(WINAPI*)(LPCSTR, DWORD, LPDEVMODEA)>("USER32.DLL", "EnumDisplaySettingsA");
  DEVMODEA mode = {};
  mode.dmSize = 156;
  DWORD count = 0;
  for (; count < 10000 && list(nullptr, count, &mode); ++count)
    EXPECT_NE(mode.dmPelsWidth * mode.dmPelsHeight * mode.dmBitsPerPel, 0u) << count;
  EXPECT_GT(count, 0u);
  EXPECT_LT(count, 10000u);
  ExpectAnswer("behind the end", 0, list(nullptr, count + 1, &mode));
}

TEST_F(DisplayContract, Joysticks) {
  const auto count = FindIn<UINT(WINAPI*)()>("WINMM.DLL", "joyGetNumDevs");
  const auto ask = FindIn<MMRESULT(WINAPI*)(UINT, LPJOYINFO)>("WINMM.DLL", "joyGetPos");
  ExpectAnswer("slots", 16, count());
  JOYINFO info = {};
  ExpectAnswer("behind the last", JOYERR_PARMS, ask(count(), &info));
}

}  // namespace
}  // namespace contract
