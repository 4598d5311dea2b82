// The sockets library (WSOCK32), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

inline constexpr int WSADESCRIPTION_LEN = 256;
inline constexpr int WSASYS_STATUS_LEN = 128;

// As in a 32-bit process.
struct WSADATA {
  WORD wVersion;
  WORD wHighVersion;
  char szDescription[WSADESCRIPTION_LEN + 1];
  char szSystemStatus[WSASYS_STATUS_LEN + 1];
  WORD iMaxSockets;
  WORD iMaxUdpDg;
  DWORD lpVendorInfo;  // an address of 32 bits on the platform, where the size counts
};
using LPWSADATA = WSADATA*;
static_assert(sizeof(WSADATA) == 400);

struct in_addr {
  DWORD s_addr;  // the four bytes in the order in which they are written
};

// The library's own memory, valid until the next call of its thread.
struct hostent {
  char* h_name;
  char** h_aliases;    // up to a null
  SHORT h_addrtype;    // AF_INET
  SHORT h_length;      // of an address
  char** h_addr_list;  // up to a null
};

inline constexpr int SOCKET_ERROR = -1;
inline constexpr int AF_INET = 2;

inline constexpr int WSAEFAULT = 10014;
inline constexpr int WSASYSNOTREADY = 10091;
inline constexpr int WSANOTINITIALISED = 10093;
inline constexpr int WSAHOST_NOT_FOUND = 11001;

// The program's calls are counted: as many calls of WSACleanup end what these have begun.
int WINAPI WSAStartup(WORD requested, LPWSADATA data);
int WINAPI WSACleanup();
int WINAPI gethostname(char* name, int size);
hostent* WINAPI gethostbyname(const char* name);
char* WINAPI inet_ntoa(in_addr address);
