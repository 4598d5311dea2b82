// DirectDraw (DDRAW), which is bound at run time only, as far as the program uses it.
#pragma once

#include "platform/host/ole32.h"

inline constexpr HRESULT DD_OK = 0;
inline constexpr HRESULT DDERR_INVALIDPARAMS = E_INVALIDARG;
inline constexpr HRESULT DDERR_INVALIDCAPS = static_cast<HRESULT>(0x88760064);
inline constexpr HRESULT DDERR_NOCOOPERATIVELEVELSET = static_cast<HRESULT>(0x887600D4);
inline constexpr HRESULT DDERR_INVALIDDIRECTDRAWGUID = static_cast<HRESULT>(0x88760231);

inline constexpr DWORD DDSCL_NORMAL = 0x08;
inline constexpr DWORD DDSD_CAPS = 0x01;
inline constexpr DWORD DDSCAPS_PRIMARYSURFACE = 0x200;
inline constexpr DWORD DDCAPS_3D = 0x01;
inline constexpr DWORD DDCAPS_BLT = 0x40;

struct DDSCAPS {
  DWORD dwCaps;
};

// The fields between, one of them a pointer of 32 bits, are for surfaces that the program does not
// make.
struct DDSURFACEDESC {
  DWORD dwSize;
  DWORD dwFlags;
  DWORD other_fields[24];
  DDSCAPS ddsCaps;
};
static_assert(sizeof(DDSURFACEDESC) == 108);

struct DDCAPS {
  DWORD dwSize;
  DWORD dwCaps;
  DWORD other_fields[93];
};
static_assert(sizeof(DDCAPS) == 380);

struct IDirectDrawSurface : IUnknown {};

struct IDirectDraw : IUnknown {
  // The primary surface alone, once there is a cooperative level.
  virtual HRESULT CreateSurface(DDSURFACEDESC* description, IDirectDrawSurface** surface,
                                IUnknown* outer) = 0;
  virtual HRESULT GetCaps(DDCAPS* of_driver, DDCAPS* of_emulation) = 0;
  // The normal level alone.
  virtual HRESULT SetCooperativeLevel(HWND window, DWORD flags) = 0;
};

// For the primary display driver alone.
HRESULT WINAPI DirectDrawCreate(GUID* driver, IDirectDraw** object, IUnknown* outer);
HRESULT WINAPI DirectDrawCreateEx(GUID* driver, void** object, REFIID interface_id,
                                  IUnknown* outer);
