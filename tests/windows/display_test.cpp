// Resolution, colours, font, DirectX and joysticks: what the report says beside what the test finds
// out by other calls, and on systems that lack a library.

#include <windows.h>

#include <ddraw.h>
#include <gtest/gtest.h>
#include <mmsystem.h>

#include <algorithm>
#include <cwchar>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

constexpr char kProfile[] =
    "[DISPLAY]\r\nCurrentResolusion=1\r\nMaxResolusion=1\r\nCurrentBitsPixel=1\r\n"
    "MaxBitsPixel=1\r\nLargeFont=1\r\n"
    "[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n[INPUT]\r\nJoysticks=1\r\n";

template <typename Function>
Function Find(const char* library, const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void (*)()>(GetProcAddress(LoadLibraryA(library), name)));
}

struct Screen {
  unsigned width = 0, height = 0, bits = 0;
};

Screen CurrentScreen() {
  HDC const dc = GetDC(nullptr);
  const Screen screen = {static_cast<unsigned>(GetDeviceCaps(dc, HORZRES)),
                         static_cast<unsigned>(GetDeviceCaps(dc, VERTRES)),
                         static_cast<unsigned>(GetDeviceCaps(dc, BITSPIXEL))};
  ReleaseDC(nullptr, dc);
  return screen;
}

Screen LargestScreen() {
  Screen best;
  DEVMODEW mode = {};
  mode.dmSize = sizeof mode;
  for (DWORD i = 0; EnumDisplaySettingsW(nullptr, i, &mode); ++i) {
    best.bits = std::max<unsigned>(best.bits, mode.dmBitsPerPel);
    if (mode.dmPelsWidth < best.width || mode.dmPelsHeight < best.height) continue;
    best.width = mode.dmPelsWidth;
    best.height = mode.dmPelsHeight;
  }
  return best;
}

std::string LargeFont() {
  HDC const dc = GetDC(nullptr);
  TEXTMETRICW metrics = {};
  GetTextMetricsW(dc, &metrics);
  ReleaseDC(nullptr, dc);
  return metrics.tmHeight > 16 ? "Yes" : "No";
}

std::string RegistryVersion() {
  wchar_t version[64] = {};
  DWORD size = sizeof version;
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\DirectX", 0, KEY_READ, &key);
  EXPECT_EQ(
      RegQueryValueExW(key, L"Version", nullptr, nullptr, reinterpret_cast<BYTE*>(version), &size),
      ERROR_SUCCESS);
  RegCloseKey(key);
  return std::string(version, version + wcslen(version));
}

std::string Acceleration() {
  constexpr GUID kDirectDraw7 = {
      0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
  const auto create =
      Find<HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*)>("ddraw.dll", "DirectDrawCreateEx");
  void* made = nullptr;
  if (create(nullptr, &made, kDirectDraw7, nullptr) != 0) return "no DirectDraw";
  IDirectDraw7* const draw = static_cast<IDirectDraw7*>(made);
  DDCAPS capabilities = {};
  capabilities.dwSize = sizeof capabilities;
  EXPECT_EQ(draw->GetCaps(&capabilities, nullptr), 0);
  draw->Release();
  return (capabilities.dwCaps & DDCAPS_3D) != 0 ? "Yes" : "No";
}

std::string Joystick() {
  const auto ask = Find<MMRESULT(WINAPI*)(UINT, JOYINFOEX*)>("winmm.dll", "joyGetPosEx");
  for (UINT i = 0; i < 16; ++i) {
    JOYINFOEX position = {};
    position.dwSize = sizeof position;
    position.dwFlags = JOY_RETURNALL;
    if (ask(i, &position) == JOYERR_NOERROR) return "present";
  }
  return "not present";
}

std::string Number(unsigned number) {
  return std::to_string(number);
}

// The lines that are no frame of a banner and not empty, behind the header.
std::vector<std::string> ItemLines(const std::string& report) {
  std::vector<std::string> lines = ReportLines(report);
  lines.erase(lines.begin());
  std::erase_if(lines, [](const std::string& line) { return line.empty() || line[0] == '='; });
  return lines;
}

class DisplayOnEveryRelease : public EveryRelease {};

TEST_P(DisplayOnEveryRelease, IsAsOtherCallsFindIt) {
  const Folder folder;
  std::vector<std::string> list;
  const std::vector<std::string> lines = ItemLines(ReportOf(folder, kProfile, {}, &list));
  const Screen now = CurrentScreen(), most = LargestScreen();
  const std::vector<std::string> expected = {
      "Resolution                 current: " + Number(now.width) + "x" + Number(now.height) +
          ", maximum: " + Number(most.width) + "x" + Number(most.height),
      "Colors (bpp)               current: " + Number(now.bits) + ", maximum: " + Number(most.bits),
      "Large font                 " + LargeFont(),
      "DirectX version            8 or better (" + RegistryVersion() + ")",
      "3D acceleration            " + Acceleration(),
      "Joystick                   " + Joystick()};
  EXPECT_EQ(lines, expected);
  const std::vector<std::string> finished = {"Display resolution...    Ok",
                                             "Display colors...        Ok",
                                             "Large font...            Ok",
                                             "DirectX version...       Ok",
                                             "3D acceleration...       Ok",
                                             "Joystick...              Ok",
                                             "",
                                             kLastLine};
  EXPECT_EQ(list, finished);
}

INSTANTIATE_TEST_SUITE_P(Display, DisplayOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

// Hears what programs tell a debugger when none is attached; the latest text stays.
class DebugListener {
 public:
  DebugListener()
      : buffer_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096,
                                   "DBWIN_BUFFER")),
        view_(static_cast<const char*>(MapViewOfFile(buffer_, FILE_MAP_READ, 0, 0, 0))),
        ready_(CreateEventA(nullptr, TRUE, TRUE, "DBWIN_BUFFER_READY")),
        told_(CreateEventA(nullptr, FALSE, FALSE, "DBWIN_DATA_READY")) {}
  ~DebugListener() {
    UnmapViewOfFile(view_);
    for (HANDLE const handle : {buffer_, ready_, told_})
      CloseHandle(handle);
  }
  // The text stands behind the number of its process.
  std::string Text() const {
    return WaitForSingleObject(told_, 0) == WAIT_OBJECT_0 ? view_ + sizeof(DWORD) : "";
  }

 private:
  HANDLE buffer_;
  const char* view_;
  HANDLE ready_;
  HANDLE told_;
};

TEST(DirectX, PartOfItIsMissing) {
  const struct {
    const char* library;
    std::string version;
    std::string acceleration;
    std::string debug_text;
  } rows[] = {
      {"ddraw", "No DirectX installed", "", ""},
      {"dinput", "2", "", "Couldn't LoadLibrary DInput\r\n"},
      {"dmusic", "6", Acceleration(), "Couldn't create CLSID_DirectMusic\r\n"},
      {"d3d8", "7", Acceleration(), ""},
  };
  for (const auto& row : rows) {
    const RegistryValue absent = RegistryValue::Text(
        HKEY_CURRENT_USER, "Software\\Wine\\AppDefaults\\hscope.exe\\DllOverrides", row.library,
        "");
    const DebugListener debugger;
    const Folder folder;
    const auto lines =
        ItemLines(ReportOf(folder, "[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n"));
    const std::vector<std::string> expected = {
        "DirectX version            " + row.version + " (" + RegistryVersion() + ")",
        "3D acceleration            " + row.acceleration};
    EXPECT_EQ(lines, expected) << row.library;
    EXPECT_EQ(debugger.Text(), row.debug_text) << row.library;
  }
}

TEST(Joystick, WithoutTheMultimediaLibrary) {
  const RegistryValue absent = RegistryValue::Text(
      HKEY_CURRENT_USER, "Software\\Wine\\AppDefaults\\hscope.exe\\DllOverrides", "winmm", "");
  const Folder folder;
  std::vector<std::string> list;
  EXPECT_EQ(ItemLines(ReportOf(folder, "[INPUT]\r\nJoysticks=1\r\n", {}, &list)),
            std::vector<std::string>{"Joystick                   not present"});
  EXPECT_EQ(list.front(), "Joystick...              Ok");
}

}  // namespace
}  // namespace drive
