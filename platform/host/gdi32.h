// Device contexts, fonts and bitmaps (GDI32), as far as the program uses them. Nothing is drawn:
// what is asked of a window's device context is recorded (host::DrawingCall in
// platform/host/desktop.h).
#pragma once

#include "platform/host/windows_types.h"

inline constexpr int LF_FACESIZE = 32;

struct LOGFONTA {
  LONG lfHeight;
  LONG lfWidth;
  LONG lfEscapement;
  LONG lfOrientation;
  LONG lfWeight;
  BYTE lfItalic;
  BYTE lfUnderline;
  BYTE lfStrikeOut;
  BYTE lfCharSet;
  BYTE lfOutPrecision;
  BYTE lfClipPrecision;
  BYTE lfQuality;
  BYTE lfPitchAndFamily;
  CHAR lfFaceName[LF_FACESIZE];
};

struct BITMAP {
  LONG bmType;
  LONG bmWidth;
  LONG bmHeight;
  LONG bmWidthBytes;
  WORD bmPlanes;
  WORD bmBitsPixel;
  LPVOID bmBits;
};

struct TEXTMETRICA {
  LONG tmHeight;
  LONG tmAscent;
  LONG tmDescent;
  LONG tmInternalLeading;
  LONG tmExternalLeading;
  LONG tmAveCharWidth;
  LONG tmMaxCharWidth;
  LONG tmWeight;
  LONG tmOverhang;
  LONG tmDigitizedAspectX;
  LONG tmDigitizedAspectY;
  BYTE tmFirstChar;
  BYTE tmLastChar;
  BYTE tmDefaultChar;
  BYTE tmBreakChar;
  BYTE tmItalic;
  BYTE tmUnderlined;
  BYTE tmStruckOut;
  BYTE tmPitchAndFamily;
  BYTE tmCharSet;
};
using LPTEXTMETRICA = TEXTMETRICA*;

// What EnumDisplaySettingsA fills, and, of a printer, nothing here.
struct DEVMODEA {
  BYTE dmDeviceName[32];
  WORD dmSpecVersion;
  WORD dmDriverVersion;
  WORD dmSize;
  WORD dmDriverExtra;
  DWORD dmFields;
  SHORT of_printers[13];
  BYTE dmFormName[32];
  WORD dmLogPixels;
  DWORD dmBitsPerPel;
  DWORD dmPelsWidth;
  DWORD dmPelsHeight;
  DWORD dmDisplayFlags;
  DWORD dmDisplayFrequency;
  DWORD of_printers_too[8];
};
static_assert(sizeof(DEVMODEA) == 156);
using LPDEVMODEA = DEVMODEA*;

inline constexpr DWORD DM_BITSPERPEL = 0x00040000;
inline constexpr DWORD DM_PELSWIDTH = 0x00080000;
inline constexpr DWORD DM_PELSHEIGHT = 0x00100000;

inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;

inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;
inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr int WHITE_BRUSH = 0;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int SYSTEM_FONT = 13;
inline constexpr int DEFAULT_GUI_FONT = 17;
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;
inline constexpr DWORD ANSI_CHARSET = 0;
inline constexpr DWORD DEFAULT_CHARSET = 1;
inline constexpr DWORD OEM_CHARSET = 255;
inline constexpr DWORD OUT_TT_PRECIS = 4;
inline constexpr DWORD CLIP_DEFAULT_PRECIS = 0;
inline constexpr DWORD DRAFT_QUALITY = 1;
inline constexpr DWORD PROOF_QUALITY = 2;
inline constexpr DWORD DEFAULT_PITCH = 0;
inline constexpr DWORD FF_DONTCARE = 0;
inline constexpr DWORD FF_MODERN = 0x30;

constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
  return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}

HFONT WINAPI CreateFontA(int height, int width, int escapement, int orientation, int weight,
                         DWORD italic, DWORD underline, DWORD strike_out, DWORD character_set,
                         DWORD output_precision, DWORD clip_precision, DWORD quality,
                         DWORD pitch_and_family, LPCSTR face);
HFONT WINAPI CreateFontIndirectA(const LOGFONTA* font);
HGDIOBJ WINAPI GetStockObject(int index);
// FALSE for a handle that is not open and, as on Windows, for an object that is selected into a DC
// when it is a bitmap or a font. Stock objects stay and answer TRUE.
BOOL WINAPI DeleteObject(HGDIOBJ object);
int WINAPI GetObjectA(HGDIOBJ object, int size, LPVOID buffer);

HDC WINAPI CreateCompatibleDC(HDC dc);
// Of the display ("DISPLAY") alone.
HDC WINAPI CreateICA(LPCSTR driver, LPCSTR device, LPCSTR output, const DEVMODEA* mode);
// 0 for an index other than those above.
int WINAPI GetDeviceCaps(HDC dc, int index);
// Of the selected font; the height, and what follows from it.
BOOL WINAPI GetTextMetricsA(HDC dc, LPTEXTMETRICA metrics);
// Of what was created; not of what was asked of a window.
BOOL WINAPI DeleteDC(HDC dc);
// The object that was selected before, of the same kind; null when the handle is no object or DC.
HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);
BOOL WINAPI BitBlt(HDC target, int x, int y, int width, int height, HDC source, int source_x,
                   int source_y, DWORD operation);
COLORREF WINAPI SetTextColor(HDC dc, COLORREF color);
COLORREF WINAPI SetBkColor(HDC dc, COLORREF color);
int WINAPI SetBkMode(HDC dc, int mode);
