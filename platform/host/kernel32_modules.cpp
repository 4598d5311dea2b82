// Libraries and the program's own file.
#include <cstring>
#include <string>

#include "platform/host/kernel32.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

constexpr const char* kKind = "library";

// The base address of the program itself.
HMODULE ProgramModule() {
  return reinterpret_cast<HMODULE>(static_cast<ULONG_PTR>(0x00400000));
}

const LayerLibrary kKernel32({.name = "KERNEL32.DLL",
                              .loaded_at_start = true,
                              .exports = {HOST_EXPORT(CloseHandle),
                                          HOST_EXPORT(CreateFileA),
                                          HOST_EXPORT(CreateThread),
                                          HOST_EXPORT(DeviceIoControl),
                                          HOST_EXPORT(ExitProcess),
                                          HOST_EXPORT(ExpandEnvironmentStringsA),
                                          HOST_EXPORT(FileTimeToSystemTime),
                                          HOST_EXPORT(FindClose),
                                          HOST_EXPORT(FindFirstFileA),
                                          HOST_EXPORT(FindNextFileA),
                                          HOST_EXPORT(FreeLibrary),
                                          HOST_EXPORT(GetCommandLineA),
                                          HOST_EXPORT(GetComputerNameA),
                                          HOST_EXPORT(GetCurrentDirectoryA),
                                          HOST_EXPORT(GetCurrentProcess),
                                          HOST_EXPORT(GetCurrentProcessId),
                                          HOST_EXPORT(GetCurrentThread),
                                          HOST_EXPORT(GetCurrentThreadId),
                                          HOST_EXPORT(GetDiskFreeSpaceA),
                                          HOST_EXPORT(GetDiskFreeSpaceExA),
                                          HOST_EXPORT(GetDriveTypeA),
                                          HOST_EXPORT(GetFileAttributesA),
                                          HOST_EXPORT(GetFileSize),
                                          HOST_EXPORT(GetFullPathNameA),
                                          HOST_EXPORT(GetLastError),
                                          HOST_EXPORT(GetLocalTime),
                                          HOST_EXPORT(GetLocaleInfoA),
                                          HOST_EXPORT(GetLogicalDriveStringsA),
                                          HOST_EXPORT(GetModuleFileNameA),
                                          HOST_EXPORT(GetModuleHandleA),
                                          HOST_EXPORT(GetPrivateProfileIntA),
                                          HOST_EXPORT(GetPrivateProfileSectionA),
                                          HOST_EXPORT(GetPrivateProfileStringA),
                                          HOST_EXPORT(GetProcAddress),
                                          HOST_EXPORT(GetProcessHeap),
                                          HOST_EXPORT(GetProfileIntA),
                                          HOST_EXPORT(GetProfileStringA),
                                          HOST_EXPORT(GetSystemDirectoryA),
                                          HOST_EXPORT(GetSystemInfo),
                                          HOST_EXPORT(GetTempPathA),
                                          HOST_EXPORT(GetTickCount),
                                          HOST_EXPORT(GetVersionExA),
                                          HOST_EXPORT(GetVolumeInformationA),
                                          HOST_EXPORT(GetWindowsDirectoryA),
                                          HOST_EXPORT(GlobalMemoryStatus),
                                          HOST_EXPORT(GlobalMemoryStatusEx),
                                          HOST_EXPORT(HeapAlloc),
                                          HOST_EXPORT(HeapFree),
                                          HOST_EXPORT(HeapReAlloc),
                                          HOST_EXPORT(HeapSize),
                                          HOST_EXPORT(LoadLibraryA),
                                          HOST_EXPORT(MulDiv),
                                          HOST_EXPORT(ReadFile),
                                          HOST_EXPORT(SetCurrentDirectoryA),
                                          HOST_EXPORT(SetErrorMode),
                                          HOST_EXPORT(SetFilePointer),
                                          HOST_EXPORT(SetLastError),
                                          HOST_EXPORT(Sleep),
                                          HOST_EXPORT(VirtualAlloc),
                                          HOST_EXPORT(VirtualFree),
                                          HOST_EXPORT(WaitForSingleObject),
                                          HOST_EXPORT(WideCharToMultiByte),
                                          HOST_EXPORT(WriteFile),
                                          HOST_EXPORT(lstrcmpA),
                                          HOST_EXPORT(lstrcmpiA)}});

// Functions of KERNEL32 that older releases do not have: the first release of NT with it, and the
// first build of Windows 95/98/Me.
struct YoungFunction {
  std::string_view name;
  DWORD nt_major;
  WORD old_build;
};
constexpr WORD kAlways = 0;
constexpr WORD kNever = 0xFFFF;
constexpr WORD kWindows95Osr2 = 1111;
constexpr YoungFunction kYoungFunctions[] = {{"CreateToolhelp32Snapshot", 5, kAlways},
                                             {"GetDiskFreeSpaceExA", 4, kWindows95Osr2},
                                             {"GlobalMemoryStatusEx", 5, kNever},
                                             {"Module32First", 5, kAlways},
                                             {"Module32Next", 5, kAlways},
                                             {"Process32First", 5, kAlways},
                                             {"Process32Next", 5, kAlways}};

bool IsTooYoung(const Machine& machine, std::string_view name) {
  const WindowsVersion& version = machine.version;
  for (const YoungFunction& young : kYoungFunctions) {
    if (name != young.name) continue;
    return machine.IsNt() ? version.major < young.nt_major
                          : LOWORD(version.build) < young.old_build;
  }
  return false;
}

bool IsOrdinal(LPCSTR name) {
  return reinterpret_cast<ULONG_PTR>(name) <= 0xFFFF;
}

}  // namespace

HMODULE WINAPI LoadLibraryA(LPCSTR name) {
  if (EndableCallFails("LoadLibraryA")) return nullptr;
  Machine& machine = CurrentMachine();
  HMODULE const module =
      name == nullptr ? nullptr : machine.libraries.Load(name, machine.system_folder);
  if (module == nullptr) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  machine.handles.Count(kKind, 1);
  return module;
}

HMODULE WINAPI GetModuleHandleA(LPCSTR name) {
  if (CallFails("GetModuleHandleA")) return nullptr;
  if (name == nullptr) return ProgramModule();
  const Machine& machine = CurrentMachine();
  HMODULE const module = machine.libraries.FindLoaded(name, machine.system_folder);
  if (module == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
  return module;
}

FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name) {
  if (CallFails("GetProcAddress")) return nullptr;
  const Machine& machine = CurrentMachine();
  const Libraries& libraries = machine.libraries;
  if (module != ProgramModule() && !libraries.IsLoaded(module)) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
  }
  FARPROC function = nullptr;
  if (IsOrdinal(name)) {
    function = libraries.Function(module, LOWORD(reinterpret_cast<ULONG_PTR>(name)));
  } else if (!IsTooYoung(machine, name)) {
    function = libraries.Function(module, std::string_view(name));
  }
  if (function == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
  return function;
}

BOOL WINAPI FreeLibrary(HMODULE module) {
  if (CallFails("FreeLibrary")) return FALSE;
  if (module == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  Machine& machine = CurrentMachine();
  switch (machine.libraries.Free(module)) {
    case Libraries::Freed::kNothing:
      SetLastError(ERROR_MOD_NOT_FOUND);
      return FALSE;
    case Libraries::Freed::kReference:
      machine.handles.Count(kKind, -1);
      break;
    case Libraries::Freed::kLoadedAtStart:
      break;
  }
  return TRUE;
}

DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size) {
  if (CallFails("GetModuleFileNameA")) return 0;
  const Machine& machine = CurrentMachine();
  const std::string path = module == nullptr || module == ProgramModule()
                               ? machine.module_path
                               : machine.libraries.PathOf(module, machine.system_folder);
  if (path.empty()) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return 0;
  }
  if (path.size() < size) {
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return static_cast<DWORD>(path.size());
  }
  // A path that is cut off has no final zero.
  path.copy(buffer, size);
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}
