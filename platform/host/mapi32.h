// Simple MAPI (MAPI32.DLL) as far as the program uses it: it binds the library at run time, and
// calls one function.
#pragma once

#include "platform/host/windows_types.h"

using LHANDLE = ULONG_PTR;
using FLAGS = ULONG;

inline constexpr ULONG MAPI_TO = 1;
inline constexpr ULONG MAPI_CC = 2;
inline constexpr ULONG MAPI_BCC = 3;
inline constexpr FLAGS MAPI_LOGON_UI = 0x1;
inline constexpr FLAGS MAPI_DIALOG = 0x8;

inline constexpr ULONG SUCCESS_SUCCESS = 0;
inline constexpr ULONG MAPI_E_FAILURE = 2;
inline constexpr ULONG MAPI_E_NOT_SUPPORTED = 26;

struct MapiRecipDesc {
  ULONG ulReserved;
  ULONG ulRecipClass;
  LPSTR lpszName;
  LPSTR lpszAddress;
  ULONG ulEIDSize;
  LPVOID lpEntryID;
};
using lpMapiRecipDesc = MapiRecipDesc*;

struct MapiFileDesc {
  ULONG ulReserved;
  ULONG flFlags;
  ULONG nPosition;
  LPSTR lpszPathName;
  LPSTR lpszFileName;
  LPVOID lpFileType;
};
using lpMapiFileDesc = MapiFileDesc*;

struct MapiMessage {
  ULONG ulReserved;
  LPSTR lpszSubject;
  LPSTR lpszNoteText;
  LPSTR lpszMessageType;
  LPSTR lpszDateReceived;
  LPSTR lpszConversationID;
  FLAGS flFlags;
  lpMapiRecipDesc lpOriginator;
  ULONG nRecipCount;
  lpMapiRecipDesc lpRecips;
  ULONG nFileCount;
  lpMapiFileDesc lpFiles;
};
using lpMapiMessage = MapiMessage*;

using LPMAPISENDMAIL = ULONG(WINAPI*)(LHANDLE session, ULONG_PTR window, lpMapiMessage message,
                                      FLAGS flags, ULONG reserved);
