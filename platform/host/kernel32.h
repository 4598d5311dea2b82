// KERNEL32 as far as the program uses it.
#pragma once

#include "platform/host/windows_types.h"

// ---- constants ----

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD FILE_SHARE_DELETE = 4;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
inline constexpr DWORD FILE_FLAG_DELETE_ON_CLOSE = 0x04000000;
inline constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

inline constexpr DWORD HEAP_ZERO_MEMORY = 8;
inline constexpr DWORD MEM_COMMIT = 0x1000;
inline constexpr DWORD MEM_RESERVE = 0x2000;
inline constexpr DWORD MEM_RELEASE = 0x8000;
inline constexpr DWORD PAGE_READWRITE = 4;

inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD STILL_ACTIVE = 259;

inline constexpr DWORD VER_PLATFORM_WIN32_WINDOWS = 1;
inline constexpr DWORD VER_PLATFORM_WIN32_NT = 2;
inline constexpr BYTE VER_NT_WORKSTATION = 1;
inline constexpr BYTE VER_NT_DOMAIN_CONTROLLER = 2;
inline constexpr BYTE VER_NT_SERVER = 3;

inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x800;
inline constexpr LCID LOCALE_USER_DEFAULT = 0x400;
inline constexpr LCTYPE LOCALE_SLANGUAGE = 2;
inline constexpr LCTYPE LOCALE_SENGLANGUAGE = 0x1001;

inline constexpr DWORD MAX_COMPUTERNAME_LENGTH = 15;

inline constexpr UINT SEM_FAILCRITICALERRORS = 0x1;
inline constexpr UINT SEM_NOOPENFILEERRORBOX = 0x8000;

inline constexpr DWORD PROCESS_VM_READ = 0x10;
inline constexpr DWORD PROCESS_QUERY_INFORMATION = 0x400;
inline constexpr DWORD NORMAL_PRIORITY_CLASS = 0x20;
inline constexpr DWORD IDLE_PRIORITY_CLASS = 0x40;
inline constexpr DWORD HIGH_PRIORITY_CLASS = 0x80;
inline constexpr DWORD REALTIME_PRIORITY_CLASS = 0x100;

inline constexpr UINT DRIVE_UNKNOWN = 0;
inline constexpr UINT DRIVE_NO_ROOT_DIR = 1;
inline constexpr UINT DRIVE_REMOVABLE = 2;
inline constexpr UINT DRIVE_FIXED = 3;
inline constexpr UINT DRIVE_REMOTE = 4;
inline constexpr UINT DRIVE_CDROM = 5;
inline constexpr UINT DRIVE_RAMDISK = 6;

inline constexpr UINT CP_ACP = 0;
inline constexpr DWORD WC_DISCARDNS = 0x10;
inline constexpr DWORD WC_SEPCHARS = 0x20;
inline constexpr DWORD WC_DEFAULTCHAR = 0x40;
inline constexpr DWORD WC_COMPOSITECHECK = 0x200;

inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_BUFFER_OVERFLOW = 111;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_DIRECTORY = 267;
inline constexpr DWORD ERROR_INVALID_FLAGS = 1004;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;

// ---- records ----

struct SECURITY_ATTRIBUTES {
  DWORD nLength;
  LPVOID lpSecurityDescriptor;
  BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

struct OVERLAPPED;
using LPOVERLAPPED = OVERLAPPED*;

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;

union ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  std::uint64_t QuadPart;
};

struct WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  DWORD dwReserved0;
  DWORD dwReserved1;
  CHAR cFileName[MAX_PATH];
  CHAR cAlternateFileName[14];
};
using LPWIN32_FIND_DATAA = WIN32_FIND_DATAA*;

struct OSVERSIONINFOA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
};
using LPOSVERSIONINFOA = OSVERSIONINFOA*;

struct OSVERSIONINFOEXA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
};
using LPOSVERSIONINFOEXA = OSVERSIONINFOEXA*;
static_assert(sizeof(OSVERSIONINFOA) == 148 && sizeof(OSVERSIONINFOEXA) == 156);

struct SYSTEM_INFO {
  WORD wProcessorArchitecture;
  WORD wReserved;
  DWORD dwPageSize;
  LPVOID lpMinimumApplicationAddress;
  LPVOID lpMaximumApplicationAddress;
  DWORD_PTR dwActiveProcessorMask;
  DWORD dwNumberOfProcessors;
  DWORD dwProcessorType;
  DWORD dwAllocationGranularity;
  WORD wProcessorLevel;
  WORD wProcessorRevision;
};
using LPSYSTEM_INFO = SYSTEM_INFO*;

struct MEMORYSTATUS {
  DWORD dwLength;
  DWORD dwMemoryLoad;
  DWORD dwTotalPhys;
  DWORD dwAvailPhys;
  DWORD dwTotalPageFile;
  DWORD dwAvailPageFile;
  DWORD dwTotalVirtual;
  DWORD dwAvailVirtual;
};
using LPMEMORYSTATUS = MEMORYSTATUS*;

struct MEMORYSTATUSEX {
  DWORD dwLength;
  DWORD dwMemoryLoad;
  std::uint64_t ullTotalPhys;
  std::uint64_t ullAvailPhys;
  std::uint64_t ullTotalPageFile;
  std::uint64_t ullAvailPageFile;
  std::uint64_t ullTotalVirtual;
  std::uint64_t ullAvailVirtual;
  std::uint64_t ullAvailExtendedVirtual;
};
using LPMEMORYSTATUSEX = MEMORYSTATUSEX*;
static_assert(sizeof(MEMORYSTATUS) == 32 && sizeof(MEMORYSTATUSEX) == 64);

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);

// ---- files: kernel32_files.cpp, kernel32_find.cpp ----

HANDLE WINAPI CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE template_file);
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written,
                      LPOVERLAPPED overlapped);
DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high);
DWORD WINAPI SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method);
BOOL WINAPI CloseHandle(HANDLE object);
DWORD WINAPI GetFileAttributesA(LPCSTR name);
BOOL WINAPI SetCurrentDirectoryA(LPCSTR path);
DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer);
// As Windows does it, by the text alone. A path of the user's own files comes with the separators
// of Linux.
DWORD WINAPI GetFullPathNameA(LPCSTR path, DWORD size, LPSTR buffer, LPSTR* name);
HANDLE WINAPI FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA data);
BOOL WINAPI FindNextFileA(HANDLE search, LPWIN32_FIND_DATAA data);
BOOL WINAPI FindClose(HANDLE search);

// ---- devices: kernel32_devices.cpp ----

BOOL WINAPI DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_size, LPVOID out,
                            DWORD out_size, LPDWORD returned, LPOVERLAPPED overlapped);

// ---- drives: kernel32_drives.cpp ----

// These know a drive by its root alone, "C:\\".
DWORD WINAPI GetLogicalDriveStringsA(DWORD size, LPSTR buffer);
UINT WINAPI GetDriveTypeA(LPCSTR root);
BOOL WINAPI GetDiskFreeSpaceA(LPCSTR root, LPDWORD sectors_per_cluster, LPDWORD bytes_per_sector,
                              LPDWORD free_clusters, LPDWORD clusters);
// Of Windows 95 OSR2 and NT 4.0 on.
BOOL WINAPI GetDiskFreeSpaceExA(LPCSTR root, ULARGE_INTEGER* available, ULARGE_INTEGER* total,
                                ULARGE_INTEGER* total_free);
// Tells the flags and the name of the file system alone; a label is empty.
BOOL WINAPI GetVolumeInformationA(LPCSTR root, LPSTR label, DWORD label_size, LPDWORD serial_number,
                                  LPDWORD longest_name, LPDWORD flags, LPSTR file_system,
                                  DWORD file_system_size);

// ---- private profiles: kernel32_profile.cpp ----

// These two read win.ini. On NT its section "windows" is a key of the user's registry, whatever
// stands in the file.
UINT WINAPI GetProfileIntA(LPCSTR section, LPCSTR key, INT fallback);
DWORD WINAPI GetProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                               DWORD size);
UINT WINAPI GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT fallback, LPCSTR file);
DWORD WINAPI GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR fallback, LPSTR buffer,
                                      DWORD size, LPCSTR file);
DWORD WINAPI GetPrivateProfileSectionA(LPCSTR section, LPSTR buffer, DWORD size, LPCSTR file);

// ---- the system: kernel32_system.cpp ----

BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA version);
DWORD WINAPI GetTickCount();
void WINAPI GetLocalTime(LPSYSTEMTIME time);
BOOL WINAPI FileTimeToSystemTime(const FILETIME* file_time, LPSYSTEMTIME time);
BOOL WINAPI GetComputerNameA(LPSTR buffer, LPDWORD size);
int WINAPI GetLocaleInfoA(LCID locale, LCTYPE type, LPSTR buffer, int size);
UINT WINAPI GetWindowsDirectoryA(LPSTR buffer, UINT size);
UINT WINAPI GetSystemDirectoryA(LPSTR buffer, UINT size);
DWORD WINAPI GetTempPathA(DWORD size, LPSTR buffer);
LPSTR WINAPI GetCommandLineA();
DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD error);
int WINAPI MulDiv(int number, int numerator, int denominator);

// ---- the environment of the process: kernel32_environment.cpp ----

// A variable that the machine does not state stays as it is written.
DWORD WINAPI ExpandEnvironmentStringsA(LPCSTR text, LPSTR buffer, DWORD size);
// Changes nothing but what the next call answers: nothing here shows boxes of its own.
UINT WINAPI SetErrorMode(UINT mode);

// ---- processors and memory: kernel32_hardware.cpp ----

void WINAPI GetSystemInfo(LPSYSTEM_INFO info);
void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS status);
// Of NT from Windows 2000 on.
BOOL WINAPI GlobalMemoryStatusEx(LPMEMORYSTATUSEX status);

// ---- texts: kernel32_text.cpp ----

// The system code page alone. A length of -1 is a text with its terminator; a size of 0 asks for
// the bytes needed. What the code page does not have becomes "?", decomposed characters too.
int WINAPI WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR text, int length, LPSTR target,
                               int size, LPCSTR default_character, BOOL* default_used);
int WINAPI lstrcmpA(LPCSTR left, LPCSTR right);
int WINAPI lstrcmpiA(LPCSTR left, LPCSTR right);

// ---- memory: kernel32_memory.cpp ----

HANDLE WINAPI GetProcessHeap();
LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size);
LPVOID WINAPI HeapReAlloc(HANDLE heap, DWORD flags, LPVOID block, SIZE_T size);
BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block);
SIZE_T WINAPI HeapSize(HANDLE heap, DWORD flags, LPCVOID block);
// As in a 32-bit process, every address fits in 32 bits. Whole blocks only.
LPVOID WINAPI VirtualAlloc(LPVOID address, SIZE_T size, DWORD kind, DWORD protection);
BOOL WINAPI VirtualFree(LPVOID address, SIZE_T size, DWORD kind);

// ---- threads: kernel32_threads.cpp ----

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack_size,
                           LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags, LPDWORD id);
DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
HANDLE WINAPI GetCurrentThread();
HANDLE WINAPI GetCurrentProcess();
DWORD WINAPI GetCurrentThreadId();
DWORD WINAPI GetCurrentProcessId();
void WINAPI OutputDebugStringA(LPCSTR text);
[[noreturn]] void WINAPI ExitProcess(UINT code);
void WINAPI Sleep(DWORD milliseconds);

// ---- processes: kernel32_processes.cpp ----

HANDLE WINAPI OpenProcess(DWORD access, BOOL inherit, DWORD id);
DWORD WINAPI GetPriorityClass(HANDLE process);
DWORD WINAPI GetProcessVersion(DWORD id);

// ---- libraries: kernel32_modules.cpp ----

HMODULE WINAPI LoadLibraryA(LPCSTR name);
HMODULE WINAPI GetModuleHandleA(LPCSTR name);
FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);
BOOL WINAPI FreeLibrary(HMODULE module);
DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size);
