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
BOOL WINAPI DeleteDC(HDC dc);
// The object that was selected before, of the same kind; null when the handle is no object or DC.
HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);
BOOL WINAPI BitBlt(HDC target, int x, int y, int width, int height, HDC source, int source_x,
                   int source_y, DWORD operation);
COLORREF WINAPI SetTextColor(HDC dc, COLORREF color);
COLORREF WINAPI SetBkColor(HDC dc, COLORREF color);
int WINAPI SetBkMode(HDC dc, int mode);
