// The shell (SHELL32): special folders and opening what the user would open.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr int CSIDL_PERSONAL = 0x05;
inline constexpr int CSIDL_DESKTOPDIRECTORY = 0x10;

struct SHITEMID {
  USHORT cb;
  BYTE abID[1];
};
struct ITEMIDLIST {
  SHITEMID mkid;
};
using LPITEMIDLIST = ITEMIDLIST*;
using LPCITEMIDLIST = const ITEMIDLIST*;

// The shell's allocator. Item lists that the shell hands out are freed through it; they count as
// "item list" among the machine's open objects, the allocator's own references as "shell
// allocator".
struct IMalloc {
  virtual ULONG WINAPI AddRef() = 0;
  virtual ULONG WINAPI Release() = 0;
  virtual void* WINAPI Alloc(SIZE_T size) = 0;
  virtual void WINAPI Free(void* block) = 0;

 protected:
  ~IMalloc() = default;
};
using LPMALLOC = IMalloc*;

HRESULT WINAPI SHGetMalloc(LPMALLOC* allocator);
// The machine states the folders; one that it does not state fails with E_FAIL.
HRESULT WINAPI SHGetSpecialFolderLocation(HWND owner, int folder, LPITEMIDLIST* list);
// The buffer holds MAX_PATH characters.
BOOL WINAPI SHGetPathFromIDListA(LPCITEMIDLIST list, LPSTR path);
// Opens nothing: the target is recorded in Machine::opened_targets. The result is above 32, or an
// error code when the call is made to fail.
HINSTANCE WINAPI ShellExecuteA(HWND owner, LPCSTR verb, LPCSTR target, LPCSTR parameters,
                               LPCSTR folder, int show_command);
