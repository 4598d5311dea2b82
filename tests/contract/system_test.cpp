// Version, names and folders of the system, memory, libraries, threads, accounts and the shell. The
// values are the machine's own; what is held here is how the calls hand them over.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "tests/contract/contract_machine.h"

namespace contract {
namespace {

class SystemContract : public testing::Test {
 protected:
  Place place;
};

TEST_F(SystemContract, VersionRecordSizes) {
  for (const DWORD size : {148, 156, 0, 147, 149, 155, 157, 512}) {
    OSVERSIONINFOEXA version;
    std::memset(&version, 0xAA, sizeof version);
    version.dwOSVersionInfoSize = size;
    const BOOL read = GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&version));
    const std::string text = "size " + std::to_string(size);
    ExpectAnswer(text, size == 148 || size == 156 ? "yes" : "122", Outcome(read));
    if (!read) continue;
    ExpectAnswer(text + ", platform", VER_PLATFORM_WIN32_NT, version.dwPlatformId);
    ExpectAnswer(text + ", text ends", true, std::memchr(version.szCSDVersion, 0, 128) != nullptr);
    ExpectAnswer(text + ", product type told", size == 156,
                 version.wProductType >= 1 && version.wProductType <= 3);
    ExpectAnswer(text + ", behind the record", size == 148, version.wServicePackMajor == 0xAAAA);
  }
}

// The older record holds what fits; the program takes no addresses above 2 GB.
TEST_F(SystemContract, MemoryStatus) {
  const auto wide = reinterpret_cast<BOOL(WINAPI*)(LPMEMORYSTATUSEX)>(reinterpret_cast<void (*)()>(
      GetProcAddress(GetModuleHandleA("kernel32"), "GlobalMemoryStatusEx")));
  ASSERT_NE(nullptr, wide);
  MEMORYSTATUSEX whole;
  whole.dwLength = sizeof whole;
  ASSERT_TRUE(wide(&whole));
  EXPECT_GT(whole.ullTotalPhys, whole.ullAvailPhys);
  EXPECT_LE(whole.dwMemoryLoad, 100u);
  for (const DWORD size : {32, 0}) {
    MEMORYSTATUS record;
    std::memset(&record, 0xAA, sizeof record);
    record.dwLength = size;
    GlobalMemoryStatus(&record);
    ExpectAnswer("length", 32, record.dwLength);
    ExpectAnswer("total", std::min(whole.ullTotalPhys, decltype(whole.ullTotalPhys){0x7FFFFFFF}),
                 record.dwTotalPhys);
    EXPECT_LE(record.dwAvailPhys, record.dwTotalPhys);
    EXPECT_LE(record.dwMemoryLoad, 100u);
  }
}

TEST_F(SystemContract, Pages) {
  auto* const pages =
      static_cast<char*>(VirtualAlloc(nullptr, 300, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
  ASSERT_NE(nullptr, pages);
  ExpectAnswer("fits in 32 bits", true, reinterpret_cast<ULONG_PTR>(pages) >> 31 >> 1 == 0);
  ExpectAnswer("a whole page of zeros", std::string(4096, '\0'), std::string(pages, 4096));
  std::memset(pages, 1, 4096);
  ExpectAnswer("free", "yes", Outcome(VirtualFree(pages, 0, MEM_RELEASE)));
}

TEST_F(SystemContract, DevicesThatAreNotThere) {
  ExpectAnswer("open", true,
               CreateFileA("\\\\.\\NoSuchDevice", GENERIC_READ, 3, nullptr, OPEN_EXISTING, 0,
                           nullptr) == INVALID_HANDLE_VALUE);
  ExpectAnswer("its error", ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST_F(SystemContract, ComputerName) {
  std::string name(64, '~');
  DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
  ASSERT_TRUE(GetComputerNameA(name.data(), &size));
  const DWORD length = static_cast<DWORD>(std::strlen(name.c_str()));
  EXPECT_GT(length, 0u);
  ExpectAnswer("size is the length", length, size);
  size = length + 1;
  ExpectAnswer("just fits", "yes", Outcome(GetComputerNameA(name.data(), &size)));
  for (const DWORD room : {length, DWORD{0}}) {
    name.assign(64, '~');
    size = room;
    const std::string text = "room for " + std::to_string(room);
    ExpectAnswer(text, "111", Outcome(GetComputerNameA(name.data(), &size)));
    ExpectAnswer(text + ", size needed", length + 1, size);
    ExpectAnswer(text + ", behind the buffer", "~", name.substr(room, 1));
  }
}

TEST_F(SystemContract, Folders) {
  static constexpr struct {
    const char* name;
    UINT (*read)(LPSTR, UINT);
    bool separator;
  } kRows[] = {
      {"Windows", [](LPSTR text, UINT size) { return GetWindowsDirectoryA(text, size); }, false},
      {"system", [](LPSTR text, UINT size) { return GetSystemDirectoryA(text, size); }, false},
      {"temp", [](LPSTR text, UINT size) -> UINT { return GetTempPathA(size, text); }, true}};
  for (const auto& row : kRows) {
    const std::string name = row.name;
    std::string text(MAX_PATH + 1, '~');
    const UINT length = row.read(text.data(), MAX_PATH);
    ExpectAnswer(name + ", length", static_cast<long long>(std::strlen(text.c_str())), length);
    ASSERT_GT(length, 3u) << name;
    const std::string folder = text.c_str();
    ExpectAnswer(name + ", drive", ":\\", folder.substr(1, 2));
    ExpectAnswer(name + ", ends in a separator", row.separator, folder.back() == '\\');
    ExpectAnswer(name + ", size query", length + 1, row.read(nullptr, 0));
    ExpectAnswer(name + ", just fits", length, row.read(text.data(), length + 1));
    for (const UINT size : {length, 1u}) {
      text.assign(MAX_PATH + 1, '~');
      ExpectAnswer(name + ", size " + std::to_string(size), length + 1,
                   row.read(text.data(), size));
      ExpectAnswer(name + ", behind size " + std::to_string(size), "~~~~", text.substr(size, 4));
    }
  }
}

// A text into rooms of all sizes around the one that it needs.
void ExpectFill(const std::string& row, const std::string& expected,
                const std::function<DWORD(DWORD, char*)>& fill) {
  const auto length = static_cast<DWORD>(expected.size());
  ExpectAnswer(row + ", size query", length + 1, fill(0, nullptr));
  std::string text(length + 9, '~');
  fill(length + 1, text.data());
  ExpectAnswer(row, expected, text.c_str());
  text.assign(length + 9, '~');
  ExpectAnswer(row + ", too short", length + 1, fill(length, text.data()));
  ExpectAnswer(row + ", behind the buffer", "~~~~", text.substr(length, 4));
}

TEST_F(SystemContract, EnvironmentAndErrorMode) {
  std::string windows(MAX_PATH, '~');
  windows.resize(GetWindowsDirectoryA(windows.data(), MAX_PATH));
  const std::pair<std::string, std::string> rows[] = {
      {"no variable", "no variable"},
      {"%WinDir%", windows},
      {"a%windir%\\b%windir", "a" + windows + "\\b%windir"},
      {"100% %no such%", "100% %no such%"},
      {"%no such%windir%", "%no such%windir%"},
      {"", ""}};
  for (const auto& [text, expected] : rows) {
    ExpectFill("'" + text + "'", expected, [&](DWORD size, char* buffer) {
      return ExpandEnvironmentStringsA(text.c_str(), buffer, size);
    });
  }
  const UINT before = SetErrorMode(SEM_NOOPENFILEERRORBOX);
  ExpectAnswer("the mode set before", SEM_NOOPENFILEERRORBOX, SetErrorMode(before));
  ExpectAnswer("win.ini without the key", 7, GetProfileIntA("hostscope", "none", 7));
}

// Over the layer the folder is one of Linux, with its separators.
std::string WithBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

TEST_F(SystemContract, FullPaths) {
  const std::pair<const char*, std::string> rows[] = {{"new.txt", place.Path("new.txt")},
                                                      {"a\\..\\.\\b", place.Path("b")},
                                                      {"C:\\a\\\\b.txt", "C:\\a\\b.txt"},
                                                      {"C:/a/../../b", "C:\\b"}};
  for (const auto& [path, expected] : rows) {
    ExpectFill(path, WithBackslashes(expected), [&](DWORD size, char* buffer) {
      const DWORD result = GetFullPathNameA(path, size, buffer, nullptr);
      std::replace(buffer, buffer + size, '/', '\\');
      return result;
    });
  }
}

TEST_F(SystemContract, LocaleInformation) {
  for (const LCTYPE type : {LOCALE_SLANGUAGE, LOCALE_SENGLANGUAGE}) {
    const std::string name = "type " + std::to_string(type);
    const int size = GetLocaleInfoA(LOCALE_USER_DEFAULT, type, nullptr, 0);
    ASSERT_GT(size, 1) << name;
    std::string text(static_cast<std::size_t>(size) + 8, '~');
    ExpectAnswer(name + ", just fits", size,
                 GetLocaleInfoA(LOCALE_USER_DEFAULT, type, text.data(), size));
    ExpectAnswer(name + ", length", size - 1, static_cast<long long>(std::strlen(text.c_str())));
    SetLastError(0);
    ExpectAnswer(name + ", one too short", 0,
                 GetLocaleInfoA(LOCALE_USER_DEFAULT, type, text.data(), size - 1));
    ExpectAnswer(name + ", error", ERROR_INSUFFICIENT_BUFFER, GetLastError());
  }
  ExpectAnswer("unknown type", 0, GetLocaleInfoA(LOCALE_USER_DEFAULT, 0xFFFF, nullptr, 0));
  ExpectAnswer("its error", ERROR_INVALID_FLAGS, GetLastError());
}

TEST_F(SystemContract, ModuleFileName) {
  std::string path(32767, '~');
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), 32767);
  ExpectAnswer("length", static_cast<long long>(std::strlen(path.c_str())), length);
  path.resize(length);
  EXPECT_NE(std::string::npos, path.find_last_of("\\/")) << path;
  EXPECT_GT(path.find_last_of('.'), path.find_last_of("\\/")) << path;
}

TEST_F(SystemContract, LibrariesThatAreNotThere) {
  for (const char* name : {"absent-library.dll", "absent-library", "C:\\absent\\library.dll"}) {
    SetLastError(0);
    ExpectAnswer(std::string("load ") + name, true, LoadLibraryA(name) == nullptr);
    ExpectAnswer(std::string("error for ") + name, ERROR_MOD_NOT_FOUND, GetLastError());
    SetLastError(0);
    ExpectAnswer(std::string("handle of ") + name, true, GetModuleHandleA(name) == nullptr);
    ExpectAnswer(std::string("error for ") + name, ERROR_MOD_NOT_FOUND, GetLastError());
  }
  ExpectAnswer("free nothing", FALSE, FreeLibrary(nullptr));
}

TEST_F(SystemContract, LoadedLibraries) {
  const HMODULE kernel = GetModuleHandleA("KERNEL32.DLL");
  ASSERT_NE(nullptr, kernel);
  ExpectAnswer("the program itself", true, GetModuleHandleA(nullptr) != nullptr);
  ExpectAnswer("case, and no extension", true, GetModuleHandleA("kernel32") == kernel);
  ExpectAnswer("function", true, GetProcAddress(kernel, "GetTickCount") != nullptr);
  for (const char* name : {"gettickcount", "GetTickCoun", "NoSuchFunction"}) {
    SetLastError(0);
    ExpectAnswer(name, true, GetProcAddress(kernel, name) == nullptr);
    ExpectAnswer(std::string(name) + ", error", ERROR_PROC_NOT_FOUND, GetLastError());
  }
}

TEST_F(SystemContract, LoadAndFree) {
  const char* name = kSpareLibrary;
  ASSERT_EQ(nullptr, GetModuleHandleA(name)) << "something else has loaded " << name;
  const HMODULE module = LoadLibraryA(name);
  ASSERT_NE(nullptr, module);
  ExpectAnswer("loaded", true, GetModuleHandleA(name) == module);
  ExpectAnswer("loaded again", true, LoadLibraryA(name) == module);
  ExpectAnswer("function", true, GetProcAddress(module, kSpareFunction) != nullptr);
  ExpectAnswer("free once", "yes", Outcome(FreeLibrary(module)));
  ExpectAnswer("still there", true, GetModuleHandleA(name) == module);
  ExpectAnswer("free again", "yes", Outcome(FreeLibrary(module)));
  ExpectAnswer("gone", true, GetModuleHandleA(name) == nullptr);
  ExpectAnswer("free too often", FALSE, FreeLibrary(module));
}

struct Worker {
  std::atomic<bool> may_end = false;
  std::atomic<DWORD> id = 0;
};

DWORD WINAPI Work(LPVOID parameter) {
  auto* worker = static_cast<Worker*>(parameter);
  worker->id = GetCurrentThreadId();
  while (!worker->may_end)
    std::this_thread::yield();
  return 42;
}

TEST_F(SystemContract, ZeroTimeWait) {
  Worker worker;
  DWORD id = 0;
  const HANDLE thread = CreateThread(nullptr, 0, Work, &worker, 0, &id);
  ASSERT_NE(nullptr, thread);
  ExpectAnswer("running", WAIT_TIMEOUT, WaitForSingleObject(thread, 0));
  worker.may_end = true;
  ExpectAnswer("ended", WAIT_OBJECT_0, WaitForSingleObject(thread, 20000));
  ExpectAnswer("its number", id, worker.id);
  ExpectAnswer("not this thread", true, id != GetCurrentThreadId());
  ExpectAnswer("close", "yes", Outcome(CloseHandle(thread)));
}

TEST_F(SystemContract, TokenAccount) {
  HANDLE token = nullptr;
  SetLastError(0);
  ExpectAnswer("thread token", "1008",
               Outcome(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)));
  ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
  DWORD needed = 0;
  SetLastError(0);
  ExpectAnswer("size query", "122",
               Outcome(GetTokenInformation(token, TokenUser, nullptr, 0, &needed)));
  ASSERT_GT(needed, sizeof(TOKEN_USER));
  alignas(16) char buffer[512] = {};
  ASSERT_LE(needed, sizeof buffer);
  DWORD filled = 0;
  ExpectAnswer("one too short", "122",
               Outcome(GetTokenInformation(token, TokenUser, buffer, needed - 1, &filled)));
  ASSERT_TRUE(GetTokenInformation(token, TokenUser, buffer, needed, &filled));
  ExpectAnswer("close", "yes", Outcome(CloseHandle(token)));
  ExpectAnswer("closed token", "6",
               Outcome(GetTokenInformation(token, TokenUser, buffer, 512, &filled)));

  const PSID sid = reinterpret_cast<TOKEN_USER*>(buffer)->User.Sid;
  char name[512] = "";
  char domain[512] = "";
  DWORD name_size = 512;
  DWORD domain_size = 512;
  SID_NAME_USE use = SidTypeInvalid;
  ASSERT_TRUE(LookupAccountSidA(nullptr, sid, name, &name_size, domain, &domain_size, &use));
  ExpectAnswer("a user", SidTypeUser, use);
  EXPECT_GT(std::strlen(name), 0u);
  EXPECT_GT(std::strlen(domain), 0u);
}

TEST_F(SystemContract, UserName) {
  char name[257] = "";
  DWORD size = sizeof name;
  ASSERT_TRUE(GetUserNameA(name, &size));
  const DWORD length = static_cast<DWORD>(std::strlen(name));
  EXPECT_GT(length, 0u);
  ExpectAnswer("size counts the zero", length + 1, size);
  ExpectAnswer("just fits", "yes", Outcome(GetUserNameA(name, &size)));
  size = length;
  ExpectAnswer("one too short", "122", Outcome(GetUserNameA(name, &size)));
  ExpectAnswer("size needed", length + 1, size);
}

TEST_F(SystemContract, SpecialFolders) {
  LPMALLOC allocator = nullptr;
  ASSERT_EQ(NOERROR, SHGetMalloc(&allocator));
  ASSERT_NE(nullptr, allocator);
  for (const int folder : {CSIDL_DESKTOPDIRECTORY, CSIDL_PERSONAL}) {
    LPITEMIDLIST list = nullptr;
    ASSERT_TRUE(SUCCEEDED(SHGetSpecialFolderLocation(nullptr, folder, &list))) << folder;
    ASSERT_NE(nullptr, list);
    char path[MAX_PATH] = "";
    ExpectAnswer("path of folder " + std::to_string(folder), TRUE,
                 SHGetPathFromIDListA(list, path));
    ExpectAnswer("its drive", ":\\", std::string(path).substr(1, 2));
    allocator->Free(list);
  }
  LPITEMIDLIST list = nullptr;
  ExpectAnswer("no such folder", true, FAILED(SHGetSpecialFolderLocation(nullptr, 0x7777, &list)));
  ExpectAnswer("its list", true, list == nullptr);
  char path[MAX_PATH] = "";
  ExpectAnswer("path of nothing", FALSE, SHGetPathFromIDListA(nullptr, path));
  allocator->Release();
}

}  // namespace
}  // namespace contract
