// The audio compression manager (MSACM32), which is bound at run time only.
#pragma once

#include "platform/host/mmsystem_errors.h"
#include "platform/host/windows_types.h"

HOST_DECLARE_HANDLE(HACMDRIVERID);

using ACMDRIVERENUMCB = BOOL(CALLBACK*)(HACMDRIVERID driver, DWORD_PTR instance, DWORD support);

inline constexpr DWORD ACMDRIVERDETAILS_SUPPORTF_CODEC = 0x1;

struct ACMDRIVERDETAILSA {
  DWORD cbStruct;
  DWORD fccType;
  DWORD fccComp;
  WORD wMid;
  WORD wPid;
  DWORD vdwACM;
  DWORD vdwDriver;
  DWORD fdwSupport;
  DWORD cFormatTags;
  DWORD cFilterTags;
  DWORD hicon;  // a handle of 32 bits on the platform, where the size counts
  CHAR szShortName[32];
  CHAR szLongName[128];
  CHAR szCopyright[80];
  CHAR szLicensing[128];
  CHAR szFeatures[512];
};

// Calls back for each driver that is enabled, in the machine's order, until the callback says no.
MMRESULT WINAPI acmDriverEnum(ACMDRIVERENUMCB callback, DWORD_PTR instance, DWORD flags);
// The record's size field must say its size.
MMRESULT WINAPI acmDriverDetailsA(HACMDRIVERID driver, ACMDRIVERDETAILSA* details, DWORD flags);
