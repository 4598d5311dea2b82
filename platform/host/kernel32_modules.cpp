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

#define EXPORT(function) \
  { #function, Export(&function) }
const LayerLibrary kKernel32({.name = "KERNEL32.DLL",
                              .loaded_at_start = true,
                              .exports = {EXPORT(CloseHandle),
                                          EXPORT(CreateFileA),
                                          EXPORT(CreateThread),
                                          EXPORT(DeviceIoControl),
                                          EXPORT(ExitProcess),
                                          EXPORT(ExpandEnvironmentStringsA),
                                          EXPORT(FileTimeToSystemTime),
                                          EXPORT(FindClose),
                                          EXPORT(FindFirstFileA),
                                          EXPORT(FindNextFileA),
                                          EXPORT(FreeLibrary),
                                          EXPORT(GetCommandLineA),
                                          EXPORT(GetComputerNameA),
                                          EXPORT(GetCurrentDirectoryA),
                                          EXPORT(GetCurrentProcess),
                                          EXPORT(GetCurrentProcessId),
                                          EXPORT(GetCurrentThread),
                                          EXPORT(GetCurrentThreadId),
                                          EXPORT(GetExitCodeThread),
                                          EXPORT(GetFileAttributesA),
                                          EXPORT(GetFileSize),
                                          EXPORT(GetFullPathNameA),
                                          EXPORT(GetLastError),
                                          EXPORT(GetLocalTime),
                                          EXPORT(GetLocaleInfoA),
                                          EXPORT(GetModuleFileNameA),
                                          EXPORT(GetModuleHandleA),
                                          EXPORT(GetPrivateProfileIntA),
                                          EXPORT(GetPrivateProfileSectionA),
                                          EXPORT(GetPrivateProfileStringA),
                                          EXPORT(GetProcAddress),
                                          EXPORT(GetProcessHeap),
                                          EXPORT(GetProfileIntA),
                                          EXPORT(GetSystemDirectoryA),
                                          EXPORT(GetSystemInfo),
                                          EXPORT(GetTempPathA),
                                          EXPORT(GetTickCount),
                                          EXPORT(GetVersionExA),
                                          EXPORT(GetWindowsDirectoryA),
                                          EXPORT(GlobalMemoryStatus),
                                          EXPORT(GlobalMemoryStatusEx),
                                          EXPORT(HeapAlloc),
                                          EXPORT(HeapFree),
                                          EXPORT(HeapReAlloc),
                                          EXPORT(HeapSize),
                                          EXPORT(LoadLibraryA),
                                          EXPORT(MulDiv),
                                          EXPORT(ReadFile),
                                          EXPORT(SetCurrentDirectoryA),
                                          EXPORT(SetErrorMode),
                                          EXPORT(SetFilePointer),
                                          EXPORT(SetLastError),
                                          EXPORT(Sleep),
                                          EXPORT(VirtualAlloc),
                                          EXPORT(VirtualFree),
                                          EXPORT(WaitForSingleObject),
                                          EXPORT(WideCharToMultiByte),
                                          EXPORT(WriteFile),
                                          EXPORT(lstrcatA),
                                          EXPORT(lstrcmpA),
                                          EXPORT(lstrcmpiA),
                                          EXPORT(lstrcpyA),
                                          EXPORT(lstrcpynA),
                                          EXPORT(lstrlenA)}});
#undef EXPORT

// Functions of KERNEL32 that older releases of NT, and Windows 95/98/Me, do not have.
struct YoungFunction {
  std::string_view name;
  DWORD nt_major;
};
constexpr YoungFunction kYoungFunctions[] = {{"GlobalMemoryStatusEx", 5}};

bool IsTooYoung(const Machine& machine, std::string_view name) {
  for (const YoungFunction& young : kYoungFunctions) {
    if (name == young.name) return !machine.IsNt() || machine.version.major < young.nt_major;
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
