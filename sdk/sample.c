/* A plug-in that lists the system's configuration files with their sizes:
 *
 *     Configuration files        C:\WINDOWS\WIN.INI        7384 b
 *                                C:\WINDOWS\SYSTEM.INI     2104 b
 *                                C:\AUTOEXEC.BAT           0 b
 *
 * In a profile: sample.dll,WriteConfigurationFiles
 *
 * It needs nothing but KERNEL32, so that it runs wherever Hostscope does.
 */
#include "hsplugin.h"

#include <windows.h>

/* The columns of the report's own sections. */
#define LABEL_WIDTH 27
#define PATH_WIDTH 26

#define COUNT(array) (sizeof(array) / sizeof *(array))

/* One line, put together from the left. What does not fit is left out. */
typedef struct {
  char text[2 * MAX_PATH];
  DWORD length;
} Line;

static void Append(Line* line, const char* text) {
  while (*text != '\0' && line->length < sizeof line->text)
    line->text[line->length++] = *text++;
}

static void PadTo(Line* line, DWORD column) {
  while (line->length < column)
    Append(line, " ");
}

static void AppendNumber(Line* line, DWORD number) {
  char digits[11];
  char* first = digits + sizeof digits - 1;
  *first = '\0';
  do {
    *--first = (char)('0' + number % 10);
    number /= 10;
  } while (number != 0);
  Append(line, first);
}

static BOOL WriteLine(HANDLE report, Line* line) {
  DWORD written = 0;
  Append(line, "\r\n");
  return WriteFile(report, line->text, line->length, &written, NULL) && written == line->length;
}

/* Looks for the file, which is named from a folder of so many characters on, and writes its line
 * when it is there. The label goes with the first line. */
static BOOL WriteFileLine(HANDLE report, const char** label, const char* folder, DWORD length,
                          const char* name) {
  char path[MAX_PATH + 16];
  DWORD end = 0;
  WIN32_FIND_DATAA found;
  HANDLE search;
  Line line;

  for (; end < length; ++end)
    path[end] = folder[end];
  while (*name != '\0')
    path[end++] = *name++;
  path[end] = '\0';
  search = FindFirstFileA(path, &found);
  if (search == INVALID_HANDLE_VALUE) return TRUE;
  FindClose(search);

  line.length = 0;
  Append(&line, *label);
  *label = "";
  PadTo(&line, LABEL_WIDTH);
  Append(&line, path);
  PadTo(&line, LABEL_WIDTH + PATH_WIDTH);
  AppendNumber(&line, found.nFileSizeLow);
  Append(&line, " b");
  return WriteLine(report, &line);
}

HSCOPE_PLUGIN_EXPORT WriteConfigurationFiles(HANDLE report) {
  static const char* const in_windows[] = {"\\WIN.INI", "\\SYSTEM.INI"};
  static const char* const in_root[] = {"\\AUTOEXEC.BAT", "\\CONFIG.SYS", "\\MSDOS.SYS",
                                        "\\BOOT.INI"};
  const char* label = "Configuration files";
  char folder[MAX_PATH];
  DWORD i;
  const DWORD length = GetWindowsDirectoryA(folder, sizeof folder);

  /* "C:\WINDOWS": the root is what stands before the first backslash. Without a drive there is
   * none, and the line of the plug-in shows "Failed". */
  if (length < 3 || length >= sizeof folder || folder[1] != ':') return HSCOPE_PLUGIN_FAILED;
  for (i = 0; i < COUNT(in_windows); ++i) {
    if (!WriteFileLine(report, &label, folder, length, in_windows[i])) return HSCOPE_PLUGIN_FAILED;
  }
  for (i = 0; i < COUNT(in_root); ++i) {
    if (!WriteFileLine(report, &label, folder, 2, in_root[i])) return HSCOPE_PLUGIN_FAILED;
  }
  return HSCOPE_PLUGIN_OK;
}

/* Nothing to do when the library is loaded and unloaded. */
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved) {
  (void)library;
  (void)reason;
  (void)reserved;
  return TRUE;
}
