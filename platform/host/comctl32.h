// The common controls library (COMCTL32). Its list functions are reached through GetProcAddress
// only.
#pragma once

#include "platform/host/windows_types.h"

void WINAPI InitCommonControls();
