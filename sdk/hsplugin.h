/* Plug-ins of Hostscope: libraries that add their own text to a report.
 *
 * A profile names a plug-in in its section CUSTOM DLLS, one per line, as the library and the
 * function that it exports:
 *
 *     [CUSTOM DLLS]
 *     inventory.dll,WriteInventory
 *
 * What stands before the last comma goes to LoadLibraryA as it is written: a path, or the name of a
 * library that lies beside hscope.exe or where else the system finds it. What stands behind it is
 * the name of the function, with its case.
 *
 * Each line loads the library, calls the function once and unloads the library again; the same
 * library may stand in several lines. What the functions write stands in the report's last section,
 * ADDITIONAL INFORMATION, in the order of the lines and with nothing in between. The dialog shows
 * the library's name with
 *
 *     Ok       the function returned something other than 0
 *     Failed   it returned 0; what it has written stays in the report
 *     NoFunc   the library has no such function, or the line has no comma
 *     Absent   the library cannot be loaded
 *
 * For C and C++, and for 32-bit libraries alone. README tells how a plug-in is built and tested.
 */
#ifndef HSCOPE_PLUGIN_H
#define HSCOPE_PLUGIN_H

/* The version of what is described here. */
#define HSCOPE_PLUGIN_VERSION 1

/* What the function answers: one byte, other than 0 when its information was written. The other
 * bytes of the register that it comes in are not looked at. */
typedef unsigned char HscopePluginResult;
#define HSCOPE_PLUGIN_FAILED ((HscopePluginResult)0)
#define HSCOPE_PLUGIN_OK ((HscopePluginResult)1)

/* The function, by the C calling convention: the caller takes the argument off the stack again.
 *
 * `report` is the open report file, a HANDLE of Windows that can be written to, positioned behind
 * everything that was written so far. Nothing else is handed over.
 *
 * The function
 *   - writes its text with WriteFile at the current position, in the system's 8-bit code page, and
 *     leaves the position behind its last byte;
 *   - ends every line with "\r\n", its last one too;
 *   - does not close the handle, keep it, or move its position backwards;
 *   - returns when it is done: the report waits for it;
 *   - leaves no thread, timer or hook behind: the library is unloaded after the call;
 *   - shows nothing, since nobody may sit before the screen.
 *
 * It is called on the thread that writes the report, which is not the dialog's and has no message
 * loop, and never twice at a time; nobody else writes to the report meanwhile. The current folder
 * is that of the program; another one that the function sets ends with the call. Some systems give
 * this thread a small stack (128 KB or less), so large buffers belong on the heap.
 *
 * Nothing is guarded: a function that faults ends the program, and one that breaks these rules
 * spoils the report.
 */
typedef HscopePluginResult(__cdecl* HscopePluginFunction)(void* report);

/* Begins the definition of the function; it is then exported under its plain name:
 *
 *     HSCOPE_PLUGIN_EXPORT WriteInventory(HANDLE report)
 *     {
 *         ...
 *         return HSCOPE_PLUGIN_OK;
 *     }
 */
#ifdef __cplusplus
#define HSCOPE_PLUGIN_EXPORT extern "C" __declspec(dllexport) HscopePluginResult __cdecl
#else
#define HSCOPE_PLUGIN_EXPORT __declspec(dllexport) HscopePluginResult __cdecl
#endif

#endif
