// What the functions of the multimedia libraries answer.
#pragma once

#include "platform/host/windows_types.h"

using MMRESULT = UINT;

inline constexpr MMRESULT MMSYSERR_NOERROR = 0;
inline constexpr MMRESULT MMSYSERR_BADDEVICEID = 2;
inline constexpr MMRESULT MMSYSERR_INVALHANDLE = 5;
inline constexpr MMRESULT MMSYSERR_NODRIVER = 6;
inline constexpr MMRESULT MMSYSERR_INVALPARAM = 11;
