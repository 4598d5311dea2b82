// The native interface of NT (ntdll), which is bound at run time only.
#pragma once

#include "platform/host/windows_types.h"

using NTSTATUS = LONG;

inline constexpr NTSTATUS STATUS_INVALID_INFO_CLASS = static_cast<NTSTATUS>(0xC0000003);
inline constexpr NTSTATUS STATUS_INFO_LENGTH_MISMATCH = static_cast<NTSTATUS>(0xC0000004);
inline constexpr NTSTATUS STATUS_ACCESS_VIOLATION = static_cast<NTSTATUS>(0xC0000005);

// Knows class 5 alone: the processes, as a 32-bit system lays them out, in a buffer whose address
// fits in 32 bits.
NTSTATUS WINAPI NtQuerySystemInformation(ULONG information_class, PVOID buffer, ULONG size,
                                         ULONG* returned);
