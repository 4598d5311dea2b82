// The libraries of a machine, as they are stated and as the program finds them.
#include "platform/host/libraries.h"

#include <gtest/gtest.h>

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
      {"setupapi", true},
      {"setupapi.", false},
      {"winspool.drv", true},
      {"winspool", false},
      {"noext.", true},
      {"noext", false},
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
  EXPECT_EQ(1u, machine_.libraries.References("SetupAPI.dll"));
  EXPECT_EQ((std::map<std::string, int>{{"library", 1}}), machine_.handles.OpenObjects());
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

}  // namespace
}  // namespace host
