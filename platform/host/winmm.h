// The multimedia library (WINMM), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

DWORD WINAPI timeGetTime();

// ---- joysticks: winmm_joysticks.cpp ----

using MMRESULT = UINT;
struct JOYINFO {
  UINT wXpos;
  UINT wYpos;
  UINT wZpos;
  UINT wButtons;
};
using LPJOYINFO = JOYINFO*;

inline constexpr MMRESULT JOYERR_NOERROR = 0;
inline constexpr MMRESULT MMSYSERR_INVALPARAM = 11;
inline constexpr MMRESULT JOYERR_PARMS = 165;
inline constexpr MMRESULT JOYERR_UNPLUGGED = 167;

UINT WINAPI joyGetNumDevs();
// A joystick that answers stands in the middle, with no button pressed.
MMRESULT WINAPI joyGetPos(UINT joystick, LPJOYINFO position);
