/* Plug-ins of Hostscope: libraries that add their own text to a report.
 *
 * A profile names a plug-in in its section CUSTOM DLLS, one per line, as the library and the
 * function that it exports:
 *
 *     [CUSTOM DLLS]
 *     inventory.dll,WriteInventory
 *
 * Each line loads the library, calls the function once and unloads the library again. What the
 * function writes stands in the report's last section, ADDITIONAL INFORMATION, right after what the
 * plug-in before it has written. The dialog shows the library's name with "Ok", "Failed" (the
 * function said so), "NoFunc" (there is no such function) or "Absent" (the library cannot be
 * loaded).
 *
 * For C and C++. See README.md for how a plug-in is built.
 */
#ifndef HSCOPE_PLUGIN_H
#define HSCOPE_PLUGIN_H

/* The version of what is described here. */
#define HSCOPE_PLUGIN_VERSION 1

/* What the function answers: one byte, other than 0 when its information was written. */
typedef unsigned char HscopePluginResult;
#define HSCOPE_PLUGIN_FAILED ((HscopePluginResult)0)
#define HSCOPE_PLUGIN_OK ((HscopePluginResult)1)

/* The function. `report` is the open report file (a HANDLE), positioned behind everything that was
 * written so far. Nothing else is handed over.
 *
 * The function
 *   - writes its text with WriteFile at the current position, in the system's 8-bit code page, and
 *     leaves the position behind its last byte;
 *   - ends every line with "\r\n", its last one too;
 *   - does not close the handle and does not keep it;
 *   - returns when it is done: the report waits for it;
 *   - shows nothing, since nobody may sit before the screen.
 *
 * It is called on the thread that writes the report, which is not the dialog's, and never twice at
 * a time. The current folder is that of the program; another one that the function sets ends with
 * the call. Some systems give this thread a small stack, so large buffers belong on the heap.
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
