/* The smallest plug-in that the gate lets pass; each option adds a fault. */
#include <windows.h>

#include "hsplugin.h"

#ifdef SECOND_EXPORT
HSCOPE_PLUGIN_EXPORT Second(HANDLE report) {
  return report != NULL;
}
#endif

#ifdef THREAD_STORAGE
extern const IMAGE_TLS_DIRECTORY32 _tls_used;
const IMAGE_TLS_DIRECTORY32 _tls_used = {0};
#endif

HSCOPE_PLUGIN_EXPORT WriteConfigurationFiles(HANDLE report) {
  static DWORD written;
#ifdef YOUNG_IMPORT
  ULARGE_INTEGER free_space;
  GetDiskFreeSpaceExA(NULL, &free_space, NULL, NULL);
#endif
#ifdef YOUNG_INSTRUCTION
  __asm__ volatile("bswap %%eax" ::: "eax");
#endif
  return (HscopePluginResult)WriteFile(report, "\r\n", 2, &written, NULL);
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved) {
  (void)library;
  (void)reason;
  (void)reserved;
  return TRUE;
}
