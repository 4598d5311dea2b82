/* The tests' own plug-in: one export for each thing that can become of a call. */
#include <windows.h>

#include "hsplugin.h"

static void Write(HANDLE report, const char* text, DWORD length) {
  DWORD written;
  WriteFile(report, text, length, &written, NULL);
}

/* Only the low eight bits of a result count: the second one is a failure. */
__declspec(dllexport) DWORD Succeeds(HANDLE report) {
  Write(report, "first, ", 7);
  return 0x00000100 | 0x80;
}

__declspec(dllexport) DWORD Fails(HANDLE report) {
  Write(report, "second\r\n", 8);
  return 0xFFFFFF00;
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved) {
  (void)library, (void)reason, (void)reserved;
  return TRUE;
}
