// The print spooler (WINSPOOL), which is bound at run time only. Records hold addresses, as wide as
// this build's.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr DWORD ERROR_INVALID_LEVEL = 124;
inline constexpr DWORD ERROR_INVALID_PRINTER_NAME = 1801;

inline constexpr DWORD PRINTER_ENUM_LOCAL = 0x2;

inline constexpr DWORD PRINTER_ATTRIBUTE_DEFAULT = 0x4;
inline constexpr DWORD PRINTER_ATTRIBUTE_SHARED = 0x8;
inline constexpr DWORD PRINTER_ATTRIBUTE_NETWORK = 0x10;
inline constexpr DWORD PRINTER_ATTRIBUTE_LOCAL = 0x40;

struct PRINTER_DEFAULTSA;

struct PRINTER_INFO_2A {
  LPSTR pServerName;
  LPSTR pPrinterName;
  LPSTR pShareName;
  LPSTR pPortName;
  LPSTR pDriverName;
  LPSTR pComment;
  LPSTR pLocation;
  void* pDevMode;
  LPSTR pSepFile;
  LPSTR pPrintProcessor;
  LPSTR pDatatype;
  LPSTR pParameters;
  void* pSecurityDescriptor;
  DWORD Attributes;
  DWORD Priority;
  DWORD DefaultPriority;
  DWORD StartTime;
  DWORD UntilTime;
  DWORD Status;
  DWORD cJobs;
  DWORD AveragePPM;
};

struct PRINTER_INFO_5A {
  LPSTR pPrinterName;
  LPSTR pPortName;
  DWORD Attributes;
  DWORD DeviceNotSelectedTimeout;
  DWORD TransmissionRetryTimeout;
};

// No defaults are taken.
BOOL WINAPI OpenPrinterA(LPSTR name, HANDLE* printer, PRINTER_DEFAULTSA* defaults);
BOOL WINAPI ClosePrinter(HANDLE printer);
// Level 2 alone.
BOOL WINAPI GetPrinterA(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed);
// Level 5 and PRINTER_ENUM_LOCAL alone: NT leaves out connections to other computers' printers,
// Windows 95/98/Me lists all.
BOOL WINAPI EnumPrintersA(DWORD flags, LPSTR name, DWORD level, LPBYTE buffer, DWORD size,
                          LPDWORD needed, LPDWORD returned);
