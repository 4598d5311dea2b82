// The only header that names the system's headers. On Windows these are the system's own; on Linux
// the host layer declares the same names, types and constants, as far as the program uses them.
#pragma once

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX  // the compiler's own library may have said so already
#define NOMINMAX
#endif
#ifndef STRICT
#define STRICT
#endif
#include <windows.h>
// The order matters: these need windows.h before them.
#include <commctrl.h>
#include <ddraw.h>
#include <mapi.h>
#include <mmsystem.h>
// Needs the line above.
#include <mmreg.h>
// Needs the line above.
#include <msacm.h>
#include <setupapi.h>
#include <shellapi.h>
#include <shlobj.h>
#include <tlhelp32.h>
#include <vfw.h>
#include <winsock.h>
#include <winspool.h>

#else

#include "platform/host/windows_api.h"

#endif
