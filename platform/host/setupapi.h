// The set-up library (SETUPAPI), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

using HDEVINFO = void*;

// The last field is as wide as an address on the platform; the record has 28 bytes on 32-bit
// systems, and here.
struct SP_DEVINFO_DATA {
  DWORD cbSize;
  GUID ClassGuid;
  DWORD DevInst;
  DWORD Reserved;
};
static_assert(sizeof(SP_DEVINFO_DATA) == 28);
using PSP_DEVINFO_DATA = SP_DEVINFO_DATA*;

inline constexpr DWORD DIGCF_PRESENT = 0x2;

inline constexpr DWORD ERROR_INVALID_USER_BUFFER = 1784;

BOOL WINAPI SetupDiClassGuidsFromNameA(LPCSTR name, LPGUID guids, DWORD room, PDWORD number);
HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* class_guid, LPCSTR enumerator, HWND parent,
                                     DWORD flags);
BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, PSP_DEVINFO_DATA device);
BOOL WINAPI SetupDiGetDeviceInstanceIdA(HDEVINFO set, PSP_DEVINFO_DATA device, LPSTR id, DWORD size,
                                        PDWORD needed);
BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set);
