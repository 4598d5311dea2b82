// Basic types of the platform. Sizes are those of Windows wherever a record is handed over by size;
// handles and pointer-wide integers are 64 bits wide, as the Linux program is a 64-bit build.
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using BOOL = int;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using CHAR = char;
using WCHAR = char16_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using UCHAR = unsigned char;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using PDWORD = DWORD*;
using LPVOID = void*;
using PVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using ATOM = WORD;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using COLORREF = DWORD;
using LANGID = WORD;
using LCID = DWORD;
using LCTYPE = DWORD;
using ACCESS_MASK = DWORD;
using HRESULT = LONG;

using HANDLE = void*;

// As on Windows under STRICT: kinds of handles that must not be mixed are kinds of pointers.
#define HOST_DECLARE_HANDLE(name) \
  struct name##__;                \
  using name = name##__*
HOST_DECLARE_HANDLE(HINSTANCE);
using HMODULE = HINSTANCE;
HOST_DECLARE_HANDLE(HWND);
HOST_DECLARE_HANDLE(HDC);
HOST_DECLARE_HANDLE(HICON);
using HCURSOR = HICON;
HOST_DECLARE_HANDLE(HMENU);
HOST_DECLARE_HANDLE(HKEY);
using PHKEY = HKEY*;
using HGDIOBJ = void*;
HOST_DECLARE_HANDLE(HFONT);
HOST_DECLARE_HANDLE(HBITMAP);
HOST_DECLARE_HANDLE(HBRUSH);

#define WINAPI
#define CALLBACK
#define APIENTRY

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

inline constexpr int MAX_PATH = 260;

using FARPROC = INT_PTR (*)();

struct GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
  friend bool operator==(const GUID&, const GUID&) = default;
};
using LPGUID = GUID*;
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

struct POINT {
  LONG x;
  LONG y;
};
struct SIZE {
  LONG cx;
  LONG cy;
};
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};
using LPRECT = RECT*;
using LPPOINT = POINT*;
using LPSIZE = SIZE*;

constexpr WORD LOWORD(ULONG_PTR value) {
  return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(ULONG_PTR value) {
  return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr BYTE LOBYTE(ULONG_PTR value) {
  return static_cast<BYTE>(value & 0xFF);
}
constexpr BYTE HIBYTE(ULONG_PTR value) {
  return static_cast<BYTE>((value >> 8) & 0xFF);
}
constexpr WORD MAKEWORD(ULONG_PTR low, ULONG_PTR high) {
  return static_cast<WORD>((low & 0xFF) | ((high & 0xFF) << 8));
}
constexpr LONG MAKELONG(ULONG_PTR low, ULONG_PTR high) {
  return static_cast<LONG>((low & 0xFFFF) | ((high & 0xFFFF) << 16));
}
constexpr LPARAM MAKELPARAM(ULONG_PTR low, ULONG_PTR high) {
  return static_cast<LPARAM>(static_cast<DWORD>(MAKELONG(low, high)));
}

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_INVALID_FUNCTION = 1;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_WRITE_PROTECT = 19;
inline constexpr DWORD ERROR_NOT_READY = 21;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_HANDLE_EOF = 38;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_NO_TOKEN = 1008;
inline constexpr DWORD ERROR_NONE_MAPPED = 1332;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT NOERROR = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);

constexpr bool SUCCEEDED(HRESULT result) {
  return result >= 0;
}
constexpr bool FAILED(HRESULT result) {
  return result < 0;
}
