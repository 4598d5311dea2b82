// The libraries of a machine, as they are stated and as the program finds them.
#include "platform/host/libraries.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

int Seven() {
  return 7;
}
int Eight() {
  return 8;
}

int CallOf(FARPROC function) {
  return function == nullptr ? 0 : reinterpret_cast<int (*)()>(reinterpret_cast<void*>(function))();
}

class LibrariesTest : public testing::Test {
 protected:
  LibrariesTest() : use_(machine_) {
    machine_.system_folder = "C:\\WINDOWS\\SYSTEM";
    machine_.module_path = "C:\\TOOLS\\hscope.exe";
    machine_.libraries.Add({.name = "SETUPAPI.DLL",
                            .exports = {{"Seven", Export(&Seven)}},
                            .ordinals = {{320, Export(&Eight)}}});
    machine_.libraries.Add({.name = "WINSPOOL.DRV"});
    machine_.libraries.Add({.name = "NOEXT"});
    machine_.libraries.Add({.name = "PLUG.DLL", .path = "C:\\TOOLS\\plug.dll"});
  }
  Machine machine_;
  UseMachine use_;
};

TEST_F(LibrariesTest, Names) {
  static constexpr struct {
    const char* name;
    bool there;
  } kRows[] = {
      {"SETUPAPI.DLL", true},
      {"setupapi", true},
      {"SetupApi.dll", true},
      {"setupapi.", false},
      {"winspool.drv", true},
      {"winspool", false},
      {"noext.", true},
      {"noext", false},
      {"absent.dll", false},
      {"", false},
      {"C:\\WINDOWS\\SYSTEM\\setupapi.dll", true},
      {"c:/windows/system/setupapi", true},
      {"C:\\TOOLS\\setupapi.dll", false},
      {"setupapi.dll\\", false},
      {"C:\\Tools\\Plug.dll", true},
      {"plug", true},
      {"C:\\WINDOWS\\SYSTEM\\plug.dll", false},
  };
  for (const auto& row : kRows) {
    SetLastError(0);
    const HMODULE module = LoadLibraryA(row.name);
    EXPECT_EQ(row.there, module != nullptr) << row.name;
    EXPECT_EQ(row.there ? 0u : ERROR_MOD_NOT_FOUND, GetLastError()) << row.name;
    EXPECT_EQ(module, GetModuleHandleA(row.name)) << row.name;
    if (module != nullptr) FreeLibrary(module);
    EXPECT_EQ(nullptr, GetModuleHandleA(row.name)) << row.name << ", freed";
  }
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

TEST_F(LibrariesTest, ReferencesAreCounted) {
  const HMODULE module = LoadLibraryA("setupapi");
  EXPECT_EQ(module, LoadLibraryA("SETUPAPI.DLL"));
  EXPECT_EQ(2u, machine_.libraries.References("SetupAPI.dll"));
  EXPECT_EQ((std::map<std::string, int>{{"library", 2}}), machine_.handles.OpenObjects());
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_EQ(module, GetModuleHandleA("setupapi"));
  EXPECT_TRUE(FreeLibrary(module));
  EXPECT_EQ(nullptr, GetModuleHandleA("setupapi"));
  EXPECT_EQ(nullptr, GetProcAddress(module, "Seven"));
  EXPECT_EQ(ERROR_MOD_NOT_FOUND, GetLastError());
  EXPECT_FALSE(FreeLibrary(module));
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
}

TEST_F(LibrariesTest, Functions) {
  const HMODULE module = LoadLibraryA("setupapi");
  const auto ordinal = [](int number) {
    return reinterpret_cast<LPCSTR>(static_cast<ULONG_PTR>(number));
  };
  EXPECT_EQ(7, CallOf(GetProcAddress(module, "Seven")));
  EXPECT_EQ(8, CallOf(GetProcAddress(module, ordinal(320))));
  for (const LPCSTR absent : {LPCSTR("seven"), LPCSTR("Eight"), ordinal(321)}) {
    SetLastError(0);
    EXPECT_EQ(nullptr, GetProcAddress(module, absent));
    EXPECT_EQ(ERROR_PROC_NOT_FOUND, GetLastError());
  }
  // An older machine's library of the same name.
  machine_.libraries.RemoveExport("setupapi.dll", "Seven");
  EXPECT_EQ(nullptr, GetProcAddress(module, "Seven"));
  machine_.libraries.Add({.name = "setupapi.dll", .exports = {{"Eight", Export(&Eight)}}});
  EXPECT_EQ(8, CallOf(GetProcAddress(module, "Eight")));
  EXPECT_EQ(8, CallOf(GetProcAddress(module, ordinal(320))));
  FreeLibrary(module);
}

TEST_F(LibrariesTest, WhatIsLoadedAtStartStays) {
  const HMODULE kernel = GetModuleHandleA("kernel32");
  ASSERT_NE(nullptr, kernel);
  EXPECT_TRUE(FreeLibrary(kernel));
  EXPECT_TRUE(FreeLibrary(kernel));
  EXPECT_EQ(kernel, GetModuleHandleA("KERNEL32.DLL"));
  EXPECT_TRUE(machine_.handles.OpenObjects().empty());
  machine_.tick_count = 8;
  EXPECT_EQ(8, CallOf(GetProcAddress(kernel, "GetTickCount")));
  machine_.libraries.Remove("kernel32.dll");
  EXPECT_EQ(nullptr, GetModuleHandleA("kernel32"));
}

TEST_F(LibrariesTest, PathsOfModules) {
  const HMODULE program = GetModuleHandleA(nullptr);
  const HMODULE library = LoadLibraryA("setupapi");
  const HMODULE plugin = LoadLibraryA("plug");
  const struct {
    const char* name;
    HMODULE module;
    DWORD size;
    const char* expected;  // with "~" for what is not written to
    DWORD result;
  } rows[] = {
      {"program", nullptr, 40, "C:\\TOOLS\\hscope.exe", 19},
      {"program by its handle", program, 40, "C:\\TOOLS\\hscope.exe", 19},
      {"library", library, 40, "C:\\WINDOWS\\SYSTEM\\SETUPAPI.DLL", 30},
      {"plug-in", plugin, 40, "C:\\TOOLS\\plug.dll", 17},
      {"just fits", nullptr, 20, "C:\\TOOLS\\hscope.exe", 19},
      {"no room for the zero", nullptr, 19, "C:\\TOOLS\\hscope.exe~", 19},
      {"cut", nullptr, 8, "C:\\TOOLS~", 8},
      {"no module", reinterpret_cast<HMODULE>(8), 40, "~", 0},
  };
  for (const auto& row : rows) {
    char path[64];
    std::memset(path, '~', sizeof(path));
    EXPECT_EQ(row.result, GetModuleFileNameA(row.module, path, row.size)) << row.name;
    EXPECT_EQ(0,
              std::memcmp(row.expected, path,
                          std::strlen(row.expected) + (row.result < row.size && row.result != 0)))
        << row.name << ": " << std::string(path, 40);
  }
  FreeLibrary(plugin);
  FreeLibrary(library);
}

}  // namespace
}  // namespace host
