// VERSION.DLL: version resources, read from the program files that lie on the machine's drives.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812;
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;

// A bare name is looked for in the program's folder, the current one, the system folder and the
// Windows folder. The size has room for the texts in 8 bits, which VerQueryValueA puts behind the
// resource; 0 when the file has none.
DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR name, LPDWORD handle);
// Too small a buffer gets the beginning of the resource.
BOOL WINAPI GetFileVersionInfoA(LPCSTR name, DWORD handle, DWORD size, LPVOID data);
// `length` is in bytes, for a text in characters; its final zero counts where the resource has one.
BOOL WINAPI VerQueryValueA(LPCVOID block, LPCSTR path, LPVOID* value, UINT* length);
