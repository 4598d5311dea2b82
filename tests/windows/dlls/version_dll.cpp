// A library that answers for its version in the layouts that VERSION_SIZES lists (as a row of
// numbers), or has no DllGetVersion at all when it is not defined.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) {
  return TRUE;
}

#ifdef VERSION_SIZES
extern "C" __declspec(dllexport) HRESULT CALLBACK DllGetVersion(DWORD* record) {
  static const DWORD kSizes[] = {VERSION_SIZES};
  for (const DWORD size : kSizes) {
    if (record[0] != size) continue;
    record[1] = 5;
    record[2] = 81;
    record[3] = 4916;
    record[4] = 2;
    if (size < 32) return S_OK;
    record[5] = 0;
    record[6] = 0x1334FFFF;  // 4916, 65535
    record[7] = 0x00050051;  // 5, 81
    return S_OK;
  }
  return E_INVALIDARG;
}
#endif
