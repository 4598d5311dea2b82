// Registry and accounts (ADVAPI32), as far as the program uses them.
//
// The registry's functions answer an error code, 0 for success; the others answer FALSE and set the
// last error.
#pragma once

#include "platform/host/windows_types.h"

// ---- constants ----

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(ULONG_PTR{0x80000000}))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(ULONG_PTR{0x80000001}))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(ULONG_PTR{0x80000002}))
#define HKEY_USERS (reinterpret_cast<HKEY>(ULONG_PTR{0x80000003}))
#define HKEY_PERFORMANCE_DATA (reinterpret_cast<HKEY>(ULONG_PTR{0x80000004}))
#define HKEY_CURRENT_CONFIG (reinterpret_cast<HKEY>(ULONG_PTR{0x80000005}))
#define HKEY_DYN_DATA (reinterpret_cast<HKEY>(ULONG_PTR{0x80000006}))

using REGSAM = ACCESS_MASK;
inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_NOTIFY = 0x0010;
inline constexpr REGSAM KEY_CREATE_LINK = 0x0020;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_EXECUTE = KEY_READ;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
inline constexpr ACCESS_MASK MAXIMUM_ALLOWED = 0x02000000;

inline constexpr DWORD REG_OPTION_OPEN_LINK = 0x0008;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_DWORD_LITTLE_ENDIAN = 4;
inline constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
inline constexpr DWORD REG_LINK = 6;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_RESOURCE_LIST = 8;
inline constexpr DWORD REG_FULL_RESOURCE_DESCRIPTOR = 9;
inline constexpr DWORD REG_RESOURCE_REQUIREMENTS_LIST = 10;
inline constexpr DWORD REG_QWORD = 11;

inline constexpr DWORD ERROR_BAD_PATHNAME = 161;
inline constexpr DWORD ERROR_KEY_DELETED = 1018;
inline constexpr DWORD ERROR_NOT_LOGGED_ON = 1245;
inline constexpr DWORD ERROR_INVALID_SID = 1337;
inline constexpr DWORD RPC_S_SERVER_UNAVAILABLE = 1722;

inline constexpr DWORD TOKEN_QUERY = 0x0008;
inline constexpr DWORD TOKEN_ALL_ACCESS = 0xF00FF;
inline constexpr DWORD UNLEN = 256;

// ---- records ----

using PSID = void*;
using PHANDLE = HANDLE*;
struct FILETIME;
using PFILETIME = FILETIME*;

enum SID_NAME_USE {
  SidTypeUser = 1,
  SidTypeGroup,
  SidTypeDomain,
  SidTypeAlias,
  SidTypeWellKnownGroup,
  SidTypeDeletedAccount,
  SidTypeInvalid,
  SidTypeUnknown
};
using PSID_NAME_USE = SID_NAME_USE*;

enum TOKEN_INFORMATION_CLASS { TokenUser = 1, TokenGroups };

struct SID_AND_ATTRIBUTES {
  PSID Sid;
  DWORD Attributes;
};
// The identifier itself follows in the same buffer.
struct TOKEN_USER {
  SID_AND_ATTRIBUTES User;
};
using PTOKEN_USER = TOKEN_USER*;

// ---- registry: advapi32_registry.cpp ----
//
// On NT a handle allows what it was opened for, and Windows 95/98/Me pay no heed to the access
// mask. Subkeys come sorted by name on NT and in the order in which they were made on Windows
// 95/98/Me; values come in the order in which they were made.

LONG WINAPI RegOpenKeyExA(HKEY key, LPCSTR subkey, DWORD options, REGSAM access, PHKEY result);
LONG WINAPI RegCloseKey(HKEY key);
LONG WINAPI RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                             LPDWORD size);
LONG WINAPI RegEnumKeyA(HKEY key, DWORD index, LPSTR name, DWORD size);
LONG WINAPI RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD size, LPDWORD reserved,
                          LPSTR class_name, LPDWORD class_size, PFILETIME last_write);
LONG WINAPI RegEnumValueA(HKEY key, DWORD index, LPSTR name, LPDWORD name_size, LPDWORD reserved,
                          LPDWORD type, LPBYTE data, LPDWORD data_size);
// The longest data is counted in the bytes in which the system keeps it: on NT a text has two for
// each character.
LONG WINAPI RegQueryInfoKeyA(HKEY key, LPSTR class_name, LPDWORD class_size, LPDWORD reserved,
                             LPDWORD subkeys, LPDWORD longest_subkey, LPDWORD longest_class,
                             LPDWORD values, LPDWORD longest_value_name, LPDWORD longest_data,
                             LPDWORD security_size, PFILETIME last_write);

// ---- accounts: advapi32_account.cpp ----
//
// Windows 95/98/Me have no tokens: all but GetUserNameA fail there with error 120.

BOOL WINAPI OpenThreadToken(HANDLE thread, DWORD access, BOOL open_as_self, PHANDLE token);
BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token);
BOOL WINAPI GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS information, LPVOID buffer,
                                DWORD size, LPDWORD needed);
BOOL WINAPI LookupAccountSidA(LPCSTR system, PSID sid, LPSTR name, LPDWORD name_size, LPSTR domain,
                              LPDWORD domain_size, PSID_NAME_USE use);
BOOL WINAPI GetUserNameA(LPSTR buffer, LPDWORD size);
