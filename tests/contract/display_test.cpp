// The display and its modes, joysticks, DirectDraw and COM. What they show is the machine's own;
// what is held here is how the calls take their arguments.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

constexpr GUID kNoInterface = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID kDirectDraw2 = {
    0xB3A6F3E0, 0x2B43, 0x11CF, {0xA2, 0xDE, 0x00, 0xAA, 0x00, 0xB9, 0x33, 0x56}};
constexpr GUID kDirectDraw7 = {
    0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
constexpr GUID kSurface3 = {
    0xDA044E00, 0x69B2, 0x11D0, {0xA1, 0xD5, 0x00, 0xAA, 0x00, 0xB8, 0xDF, 0xBB}};
constexpr GUID kDirectMusicClass = {
    0x636B9F10, 0x0C7D, 0x11D1, {0x95, 0xB2, 0x00, 0x20, 0xAF, 0xDC, 0x74, 0x21}};
constexpr GUID kDirectMusic = {
    0x6536115A, 0x7B2D, 0x11D2, {0xBA, 0x18, 0x00, 0x00, 0xF8, 0x75, 0xAC, 0x12}};

std::string Hex(HRESULT result) {
  char text[16];
  wsprintfA(text, "%08lX", static_cast<unsigned long>(static_cast<DWORD>(result)));
  return text;
}

class DisplayContract : public testing::Test {
 protected:
  template <typename Function>
  Function Find(const char* library, const char* name) {
    HMODULE const module = LoadLibraryA(library);
    const auto found =
        reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
    EXPECT_NE(nullptr, found) << name;
    return found;
  }
  // The result of asking for the interface, released again.
  static std::string Ask(IUnknown* object, const GUID& id) {
    void* given = object;
    const HRESULT result = object->QueryInterface(id, &given);
    EXPECT_EQ(SUCCEEDED(result), given != nullptr);
    if (given != nullptr) static_cast<IUnknown*>(given)->Release();
    return Hex(result);
  }

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
      Find<BOOL(WINAPI*)(LPCSTR, DWORD, LPDEVMODEA)>("USER32.DLL", "EnumDisplaySettingsA");
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
  const auto count = Find<UINT(WINAPI*)()>("WINMM.DLL", "joyGetNumDevs");
  const auto ask = Find<MMRESULT(WINAPI*)(UINT, LPJOYINFO)>("WINMM.DLL", "joyGetPos");
  ExpectAnswer("slots", 16, count());
  JOYINFO info = {};
  ExpectAnswer("behind the last", JOYERR_PARMS, ask(count(), &info));
}

TEST_F(DisplayContract, DirectDraw) {
  const auto create =
      Find<HRESULT(WINAPI*)(GUID*, IDirectDraw**, IUnknown*)>("DDRAW.DLL", "DirectDrawCreate");
  IDirectDraw* draw = nullptr;
  ASSERT_EQ(Hex(create(nullptr, &draw, nullptr)), Hex(DD_OK));
  ASSERT_NE(nullptr, draw);
  ExpectAnswer("interface 2", Hex(DD_OK), Ask(draw, kDirectDraw2));
  ExpectAnswer("no interface", Hex(E_NOINTERFACE), Ask(draw, kNoInterface));

  DDCAPS capabilities = {};
  capabilities.dwSize = 380;
  ExpectAnswer("capabilities", Hex(DD_OK), Hex(draw->GetCaps(&capabilities, nullptr)));

  IDirectDrawSurface* surface = nullptr;
  const auto make = [&] {
    DDSURFACEDESC description = {};
    description.dwSize = 108;
    description.dwFlags = DDSD_CAPS;
    description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE;
    return Hex(draw->CreateSurface(&description, &surface, nullptr));
  };
  ExpectAnswer("surface without a level", Hex(DDERR_NOCOOPERATIVELEVELSET), make());
  ExpectAnswer("level", Hex(DD_OK), Hex(draw->SetCooperativeLevel(nullptr, DDSCL_NORMAL)));
  ExpectAnswer("surface", Hex(DD_OK), make());
  ASSERT_NE(nullptr, surface);
  ExpectAnswer("surface 3", Hex(DD_OK), Ask(surface, kSurface3));
  surface->Release();
  draw->Release();

  const auto create_7 =
      Find<HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*)>("DDRAW.DLL", "DirectDrawCreateEx");
  void* made = nullptr;
  ASSERT_EQ(Hex(create_7(nullptr, &made, kDirectDraw7, nullptr)), Hex(DD_OK));
  static_cast<IUnknown*>(made)->Release();
}

TEST_F(DisplayContract, Com) {
  const auto begin = Find<HRESULT(WINAPI*)(LPVOID)>("OLE32.DLL", "CoInitialize");
  const auto end = Find<void(WINAPI*)()>("OLE32.DLL", "CoUninitialize");
  const auto create = Find<HRESULT(WINAPI*)(REFCLSID, IUnknown*, DWORD, REFIID, LPVOID*)>(
      "OLE32.DLL", "CoCreateInstance");
  const auto ask = [&](const GUID& class_id, const GUID& id) {
    void* made = &made;
    const HRESULT result = create(class_id, nullptr, CLSCTX_INPROC_SERVER, id, &made);
    EXPECT_EQ(SUCCEEDED(result), made != nullptr);
    if (made != nullptr) static_cast<IUnknown*>(made)->Release();
    return Hex(result);
  };
  ExpectAnswer("before", Hex(CO_E_NOTINITIALIZED), ask(kDirectMusicClass, kDirectMusic));
  ExpectAnswer("first", Hex(S_OK), Hex(begin(nullptr)));
  ExpectAnswer("once more", Hex(S_FALSE), Hex(begin(nullptr)));
  end();
  ExpectAnswer("DirectMusic", Hex(S_OK), ask(kDirectMusicClass, kDirectMusic));
  ExpectAnswer("no interface", Hex(E_NOINTERFACE), ask(kDirectMusicClass, kNoInterface));
  end();
}

}  // namespace
}  // namespace contract
