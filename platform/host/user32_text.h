// The text functions of USER32.
#pragma once

#include <cstdarg>

#include "platform/host/windows_types.h"

// Formats into at most 1024 bytes, the final zero included, and answers the number of characters
// written without it. Understood is %[-][#][0][width][.precision][h|l] with c d i s u x X, in this
// order of flags, and "%%"; of anything else the characters from the type on are written as text.
// Numbers have 32 bits, with "l" or "h" or without; a null text is "(null)". No 64-bit and no
// 16-bit text values.
int WINAPI wsprintfA(LPSTR buffer, LPCSTR format, ...);
int WINAPI wvsprintfA(LPSTR buffer, LPCSTR format, std::va_list arguments);

// A pointer below 0x10000 is a single character and is answered as one.
LPSTR WINAPI CharUpperA(LPSTR text);
LPSTR WINAPI CharLowerA(LPSTR text);
