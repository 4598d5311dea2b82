// What the kernel's functions answer when they are made to fail, and what only this layer can show
// of them: the heap's care, and the limit of profiles on Windows 95/98/Me.
#include "platform/host/kernel32.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "platform/host/machine.h"
#include "platform/host/user32_text.h"
#include "tests/support/test_folder.h"

namespace host {
namespace {

class Kernel32Test : public testing::Test {
 protected:
  Kernel32Test() : use_(machine_) {
    folder_.Write("file.ini", "[S]\nk=5\n");
    machine_.files.SetCurrentFolder(folder_.path().string());
    machine_.module_path = "C:\\hscope.exe";
  }
  std::string Profile() const { return folder_.PathOf("file.ini"); }

  Machine machine_;
  UseMachine use_;
  hostscope::test::TestFolder folder_;
};

// Functions whose failure the program can see, and that no item of the report calls: the answer
// then, while everything else they are given is in order.
TEST_F(Kernel32Test, StatedFaults) {
  constexpr DWORD kError = 1234;
  char buffer[64];
  DWORD number = sizeof(buffer);
  WIN32_FIND_DATAA data;
  const std::string profile = Profile();
  const HANDLE file = CreateFileA(profile.c_str(), GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  const HANDLE search = FindFirstFileA("*", &data);
  const HANDLE thread = CreateThread(
      nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr);
  void* block = HeapAlloc(GetProcessHeap(), 0, 8);
  const std::map<const char*, std::function<bool()>> rows = {
      {"ReadFile", [&] { return !ReadFile(file, buffer, 1, &number, nullptr) && number == 0; }},
      {"WriteFile", [&] { return !WriteFile(file, buffer, 1, &number, nullptr) && number == 0; }},
      {"GetFileSize", [&] { return GetFileSize(file, nullptr) == INVALID_FILE_SIZE; }},
      {"GetPrivateProfileIntA",
       [&] { return GetPrivateProfileIntA("S", "k", 9, profile.c_str()) == 9; }},
      {"GetPrivateProfileSectionA",
       [&] { return GetPrivateProfileSectionA("S", buffer, 64, profile.c_str()) == 0; }},
      {"GetModuleFileNameA", [&] { return GetModuleFileNameA(nullptr, buffer, 64) == 0; }},
      {"CreateThread",
       [] {
         return CreateThread(
                    nullptr, 0, [](LPVOID) -> DWORD { std::abort(); }, nullptr, 0, nullptr) ==
                nullptr;
       }},
      {"WaitForSingleObject", [&] { return WaitForSingleObject(thread, 1) == WAIT_FAILED; }},
  };
  const std::map<std::string, int> open = {
      {"file", 1}, {"heap block", 1}, {"search", 1}, {"thread", 1}};
  for (const auto& [function, fails] : rows) {
    machine_.faults.FailNth(function, 1, kError);
    SetLastError(0);
    const unsigned calls = machine_.faults.CallCount(function);
    EXPECT_TRUE(fails()) << function;
    EXPECT_EQ(kError, GetLastError()) << function;
    EXPECT_EQ(calls + 1, machine_.faults.CallCount(function)) << function;
  }
  EXPECT_EQ(open, machine_.handles.OpenObjects());
  WaitForSingleObject(thread, INFINITE);
  EXPECT_TRUE(CloseHandle(file) && FindClose(search) && CloseHandle(thread));
  EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

// Memory that is not asked to be zero is not, and a block that is changed in size moves.
TEST_F(Kernel32Test, TheHeapHidesNoMistakes) {
  const HANDLE heap = GetProcessHeap();
  auto* const block = static_cast<unsigned char*>(HeapAlloc(heap, 0, 4));
  EXPECT_EQ(0, std::count(block, block + 4, 0));
  std::memset(block, 7, 4);
  auto* const larger = static_cast<unsigned char*>(HeapReAlloc(heap, HEAP_ZERO_MEMORY, block, 8));
  EXPECT_NE(block, larger);
  EXPECT_EQ(8u, HeapSize(heap, 0, larger));
  EXPECT_EQ(4, std::count(larger, larger + 4, 7));
  EXPECT_EQ(4, std::count(larger + 4, larger + 8, 0));
  EXPECT_EQ((std::map<std::string, int>{{"heap block", 1}}), machine_.handles.OpenObjects());
  EXPECT_TRUE(HeapFree(heap, 0, larger));
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
  EXPECT_DEATH(HeapFree(heap, 0, larger), "HeapFree: .* is no heap block");
}

TEST_F(Kernel32Test, SectionsEndAt32KilobytesOnWindows95) {
  std::string text = "[L]\nfirst=1\n";
  for (int line = 0; text.size() < 32767; ++line)
    text += ";" + std::to_string(line) + "\n";
  text += "last=2\n[M]\nother=3\n";
  folder_.Write("file.ini", text);
  const auto number = [&](const char* section, const char* key) {
    return GetPrivateProfileIntA(section, key, 0, Profile().c_str());
  };
  for (const bool nt : {false, true}) {
    machine_.version.platform_id = nt ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS;
    EXPECT_EQ(1u, number("L", "first")) << nt;
    EXPECT_EQ(nt ? 2u : 0u, number("L", "last")) << nt;
    EXPECT_EQ(3u, number("M", "other")) << nt;
  }
}

}  // namespace
}  // namespace host
