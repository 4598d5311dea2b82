// The multimedia library (WINMM), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

DWORD WINAPI timeGetTime();
