// Resolution, colours, font, DirectX and joysticks: what the report says beside what the test finds
// out by other calls, and on systems that lack a part of DirectX.

#include <windows.h>

#include <ddraw.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

std::string RegistryVersion() {
  wchar_t version[64] = {};
  DWORD size = sizeof version;
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\DirectX", 0, KEY_READ, &key);
  EXPECT_EQ(
      RegQueryValueExW(key, L"Version", nullptr, nullptr, reinterpret_cast<BYTE*>(version), &size),
      ERROR_SUCCESS);
  RegCloseKey(key);
  return std::string(version, version + lstrlenW(version));
}

std::string Acceleration() {
  constexpr GUID kDirectDraw7 = {
      0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
  const auto create = reinterpret_cast<HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*)>(
      reinterpret_cast<void (*)()>(
          GetProcAddress(LoadLibraryA("ddraw.dll"), "DirectDrawCreateEx")));
  void* made = nullptr;
  if (create(nullptr, &made, kDirectDraw7, nullptr) != 0) return "no DirectDraw";
  IDirectDraw7* const draw = static_cast<IDirectDraw7*>(made);
  DDCAPS capabilities = {};
  capabilities.dwSize = sizeof capabilities;
  EXPECT_EQ(draw->GetCaps(&capabilities, nullptr), 0);
  draw->Release();
  return (capabilities.dwCaps & DDCAPS_3D) != 0 ? "Yes" : "No";
}

// Resolution, colours and font.
std::vector<std::string> DisplayLines() {
  HDC const dc = GetDC(nullptr);
  TEXTMETRICW metrics = {};
  GetTextMetricsW(dc, &metrics);
  DWORD width = 0, height = 0, bits = 0;
  DEVMODEW mode = {};
  mode.dmSize = sizeof mode;
  for (DWORD i = 0; EnumDisplaySettingsW(nullptr, i, &mode); ++i) {
    bits = std::max(bits, mode.dmBitsPerPel);
    if (mode.dmPelsWidth < width || mode.dmPelsHeight < height) continue;
    width = mode.dmPelsWidth;
    height = mode.dmPelsHeight;
  }
  char resolution[99], colors[99];
  wsprintfA(resolution, "Resolution                 current: %ux%u, maximum: %ux%u",
            GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, VERTRES), width, height);
  wsprintfA(colors, "Colors (bpp)               current: %u, maximum: %u",
            GetDeviceCaps(dc, BITSPIXEL), bits);
  ReleaseDC(nullptr, dc);
  const std::string large = metrics.tmHeight > 16 ? "Yes" : "No";
  return {resolution, colors, "Large font                 " + large};
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
  const std::vector<std::string> lines = ItemLines(
      ReportOf(folder,
               "[DISPLAY]\r\nCurrentResolusion=1\r\nMaxResolusion=1\r\nCurrentBitsPixel=1\r\n"
               "MaxBitsPixel=1\r\nLargeFont=1\r\n"
               "[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n[INPUT]\r\nJoysticks=1\r\n"));
  std::vector<std::string> expected = DisplayLines();
  expected.push_back("DirectX version            8 or better (" + RegistryVersion() + ")");
  expected.push_back("3D acceleration            " + Acceleration());
  expected.push_back("Joystick                   not present");
  EXPECT_EQ(lines, expected);
}

INSTANTIATE_TEST_SUITE_P(Display, DisplayOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

TEST(DirectX, PartOfItIsMissing) {
  for (const auto& [library, version] :
       {std::pair{"ddraw", "No DirectX installed"}, {"dinput", "2"}}) {
    const RegistryValue absent = RegistryValue::Text(
        HKEY_CURRENT_USER, "Software\\Wine\\AppDefaults\\hscope.exe\\DllOverrides", library, "");
    const Folder folder;
    const auto lines =
        ItemLines(ReportOf(folder, "[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n"));
    const std::vector<std::string> expected = {
        "DirectX version            " + std::string(version) + " (" + RegistryVersion() + ")",
        "3D acceleration            "};
    EXPECT_EQ(lines, expected) << library;
  }
}

}  // namespace
}  // namespace drive
