// The video compression manager (MSVFW32), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

HOST_DECLARE_HANDLE(HIC);

inline constexpr DWORD ICTYPE_VIDEO = 0x63646976;  // "vidc"
inline constexpr UINT ICMODE_QUERY = 4;
inline constexpr LRESULT ICERR_OK = 0;
inline constexpr LRESULT ICERR_BADHANDLE = -8;

struct ICINFO {
  DWORD dwSize;
  DWORD fccType;
  DWORD fccHandler;
  DWORD dwFlags;
  DWORD dwVersion;
  DWORD dwVersionICM;
  WCHAR szName[16];
  WCHAR szDescription[128];
  WCHAR szDriver[128];
};

// Of the compressor with that number its code and its driver are told; the record must state its
// size.
BOOL WINAPI ICInfo(DWORD type, DWORD number, ICINFO* info);
// By its four-character code, whose case does not count. Null: there is no such compressor.
HIC WINAPI ICOpen(DWORD type, DWORD handler, UINT mode);
// The number of bytes filled; 0 for a record that is too small.
LRESULT WINAPI ICGetInfo(HIC compressor, ICINFO* info, DWORD size);
LRESULT WINAPI ICClose(HIC compressor);
