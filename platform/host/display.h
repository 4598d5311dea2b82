// The machine's display modes, its DirectX and its joysticks.
#pragma once

#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct DisplayMode {
  DWORD width = 0;
  DWORD height = 0;
  DWORD bits_per_pixel = 0;
};

struct Display {
  // In the order of EnumDisplaySettingsA; empty: the screen's own mode is the only one.
  std::vector<DisplayMode> modes;
  LONG system_font_height = 16;  // of the desktop window's text metrics, in pixels
};

struct Machine;

// By StateDirectX, which brings the libraries.
struct DirectX {
  // The release times 0x100, 0x601 for 6.1; 0: none.
  DWORD release = 0;
  bool accelerates_3d = false;
};

// The release of DirectX as above. The libraries and interfaces are there from now on that it and
// those before it brought.
void StateDirectX(Machine& machine, DWORD release);

struct Joysticks {
  UINT slots = 16;              // joyGetNumDevs
  std::vector<UINT> connected;  // the numbers of those that answer
};

}  // namespace host
