// Tool help, which is bound at run time only: kernel32_processes.cpp.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr DWORD TH32CS_SNAPPROCESS = 2;

// The fourth field is as wide as an address on the platform; the record has 296 bytes on 32-bit
// systems, and here.
struct PROCESSENTRY32 {
  DWORD dwSize;
  DWORD cntUsage;
  DWORD th32ProcessID;
  DWORD th32DefaultHeapID;
  DWORD th32ModuleID;
  DWORD cntThreads;
  DWORD th32ParentProcessID;
  LONG pcPriClassBase;
  DWORD dwFlags;
  CHAR szExeFile[MAX_PATH];
};
static_assert(sizeof(PROCESSENTRY32) == 296);
using LPPROCESSENTRY32 = PROCESSENTRY32*;
struct MODULEENTRY32;
using LPMODULEENTRY32 = MODULEENTRY32*;

// Processes alone, of the whole machine.
HANDLE WINAPI CreateToolhelp32Snapshot(DWORD flags, DWORD process);
BOOL WINAPI Process32First(HANDLE snapshot, LPPROCESSENTRY32 entry);
BOOL WINAPI Process32Next(HANDLE snapshot, LPPROCESSENTRY32 entry);
// The program looks for these two, and never calls them: no snapshot holds modules.
BOOL WINAPI Module32First(HANDLE snapshot, LPMODULEENTRY32 entry);
BOOL WINAPI Module32Next(HANDLE snapshot, LPMODULEENTRY32 entry);
