// The lists of processes, and what one process answers.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class ProcessContract : public testing::Test {
 protected:
  Place place;
};

// The name that tool help gives this process, behind the last backslash.
std::string OwnName(HANDLE snapshot) {
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  bool more = Process32First(snapshot, &entry);
  while (more && entry.th32ProcessID != GetCurrentProcessId())
    more = Process32Next(snapshot, &entry);
  const std::string name = entry.szExeFile;
  return more ? name.substr(name.rfind('\\') + 1) : "not listed";
}

TEST_F(ProcessContract, ToolHelp) {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  ASSERT_NE(INVALID_HANDLE_VALUE, snapshot);
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  entry.dwSize = sizeof entry - 1;
  ExpectAnswer("short record", "122", Outcome(Process32First(snapshot, &entry)));
  EXPECT_NE("not listed", OwnName(snapshot));
  EXPECT_EQ(OwnName(snapshot), OwnName(snapshot)) << "first begins anew";
  entry.dwSize = sizeof entry;
  while (Process32Next(snapshot, &entry)) {
  }
  ExpectAnswer("end", ERROR_NO_MORE_FILES, GetLastError());
  ExpectAnswer("close", "yes", Outcome(CloseHandle(snapshot)));
}

TEST_F(ProcessContract, NativeList) {
  const auto query =
      reinterpret_cast<LONG(WINAPI*)(ULONG, PVOID, ULONG, ULONG*)>(reinterpret_cast<void (*)()>(
          GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
  ASSERT_NE(nullptr, query);
  constexpr ULONG kSize = 65536;
  auto* const list =
      static_cast<BYTE*>(VirtualAlloc(nullptr, kSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
  const auto number = [list](std::size_t at) {
    DWORD value = 0;
    std::memcpy(&value, list + at, sizeof value);
    return value;
  };
  ExpectAnswer("short", static_cast<LONG>(0xC0000004), query(5, list, 4, nullptr));
  ASSERT_EQ(0, query(5, list, kSize, nullptr));
  std::size_t at = 0;
  while (number(at + 0x44) != GetCurrentProcessId() && number(at) != 0)
    at += number(at);
  ASSERT_EQ(GetCurrentProcessId(), number(at + 0x44));
  EXPECT_GE(number(at + 4), 1u) << "threads";
  const DWORD length = number(at + 0x38) & 0xFFFF;
  EXPECT_GE(number(at + 0x38) >> 16, length) << "room of the name";
  const DWORD base = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(list));
  std::string name;
  for (DWORD i = 0; i < length; i += 2)
    name += static_cast<char>(list[number(at + 0x3C) - base + i]);
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  EXPECT_EQ(OwnName(snapshot), name);
  CloseHandle(snapshot);
  VirtualFree(list, 0, MEM_RELEASE);
}

TEST_F(ProcessContract, OfOneProcess) {
  constexpr DWORD kAccess = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
  for (const DWORD id : {0u, 0xFFFF0003u})
    ExpectAnswer(std::to_string(id), "87", Outcome(OpenProcess(kAccess, FALSE, id) != nullptr));
  const HANDLE own = OpenProcess(kAccess, FALSE, GetCurrentProcessId());
  ExpectAnswer("class", NORMAL_PRIORITY_CLASS, GetPriorityClass(own));
  ExpectAnswer("close", "yes", Outcome(CloseHandle(own)));
  ExpectAnswer("class of none", "6", Outcome(GetPriorityClass(nullptr) != 0));
  ExpectAnswer("version", 0x00040000, GetProcessVersion(GetCurrentProcessId()));
  ExpectAnswer("of 0", 0x00040000, GetProcessVersion(0));
  ExpectAnswer("of none", 0, GetProcessVersion(0xFFFF0003));
}

}  // namespace
}  // namespace contract
