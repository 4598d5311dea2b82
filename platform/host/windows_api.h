// The platform's interface as the Linux program sees it: the same names, types and constants as on
// Windows, only those that the program uses, one header per library.
#pragma once

#include "platform/host/advapi32.h"
#include "platform/host/comctl32.h"
#include "platform/host/ddraw.h"
#include "platform/host/gdi32.h"
#include "platform/host/kernel32.h"
#include "platform/host/mapi32.h"
#include "platform/host/msacm32.h"
#include "platform/host/msvfw32.h"
#include "platform/host/ntdll.h"
#include "platform/host/ole32.h"
#include "platform/host/setupapi.h"
#include "platform/host/shell32.h"
#include "platform/host/tlhelp32.h"
#include "platform/host/user32.h"
#include "platform/host/version.h"
#include "platform/host/windows_types.h"
#include "platform/host/winmm.h"
#include "platform/host/winspool.h"
#include "platform/host/wsock32.h"
