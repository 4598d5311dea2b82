// The DirectX release on machines of every release, with each step of finding it failing in turn;
// nothing stays open, whichever failed.
#include "probes/devices/directx.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

constexpr auto kFailure = static_cast<DWORD>(0x80004005);
constexpr DWORD kOtherSuccess = 1;

class DirectXTest : public testing::Test {
 protected:
  // A machine of the release, and what it has told its debugger.
  struct DirectXMachine {
    explicit DirectXMachine(DWORD release) : use(machine) {
      host::StateDirectX(machine, release);
      machine.debugger = [this](const std::string& text) { debug_texts += text; };
    }
    ~DirectXMachine() {
      for (const auto& [kind, count] : machine.handles.OpenObjects())
        ADD_FAILURE() << count << " left open: " << kind;
    }
    host::Machine machine;
    host::UseMachine use;
    std::string debug_texts;
  };

  static void ExpectVersion(const std::string& what, DirectXMachine& machine, DWORD version,
                            const char* debug_text) {
    EXPECT_EQ(DetectDirectXVersion(), version) << what;
    EXPECT_EQ(machine.debug_texts, debug_text) << what;
  }
};

TEST_F(DirectXTest, ReleaseOfAMachine) {
  const std::pair<DWORD, const char*> rows[] = {
      {0, ""},
      {0x100, "Couldn't QI DDraw2\r\n"},
      {0x200, "Couldn't LoadLibrary DInput\r\n"},
      {0x300, ""},
      {0x500, ""},
      {0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {0x601, ""},
      {0x700, ""},
      {0x800, ""},
  };
  for (const auto& [release, debug_text] : rows) {
    DirectXMachine machine(release);
    ExpectVersion(std::to_string(release), machine, release, debug_text);
  }
}

TEST_F(DirectXTest, WhatIsMissingFixesTheNumber) {
  const struct {
    const char* library;
    const char* function;  // null: the whole library is absent
    DWORD version;
    const char* debug_text;
  } rows[] = {
      {"DDRAW.DLL", nullptr, 0, ""},
      {"DDRAW.DLL", "DirectDrawCreate", 0, "Couldn't LoadLibrary DDraw\r\n"},
      {"DINPUT.DLL", nullptr, 0x200, "Couldn't LoadLibrary DInput\r\n"},
      {"DINPUT.DLL", "DirectInputCreateA", 0x200, "Couldn't GetProcAddress DInputCreate\r\n"},
      {"OLE32.DLL", nullptr, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {"OLE32.DLL", "CoUninitialize", 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {"DDRAW.DLL", "DirectDrawCreateEx", 0x601, ""},
      {"D3D8.DLL", nullptr, 0x700, ""},
  };
  for (const auto& row : rows) {
    DirectXMachine machine(0x800);
    if (row.function == nullptr) {
      machine.machine.libraries.Remove(row.library);
    } else {
      machine.machine.libraries.RemoveExport(row.library, row.function);
    }
    ExpectVersion(std::string(row.library) + " " + (row.function ? row.function : ""), machine,
                  row.version, row.debug_text);
  }
}

TEST_F(DirectXTest, CallThatFailsFixesTheNumber) {
  const struct {
    const char* call;
    unsigned nth;
    bool gives_object;  // and may tell of success without one
    DWORD version;
    const char* debug_text;
  } rows[] = {
      {"DirectDrawCreate", 1, true, 0, "Couldn't create DDraw\r\n"},
      {"IDirectDraw::QueryInterface", 1, true, 0x100, "Couldn't QI DDraw2\r\n"},
      {"IDirectDraw::SetCooperativeLevel", 1, false, 0x301, "Couldn't Set coop level\r\n"},
      {"IDirectDraw::CreateSurface", 1, true, 0x301, "Couldn't CreateSurface\r\n"},
      {"IDirectDrawSurface::QueryInterface", 1, true, 0x300, ""},
      {"IDirectDrawSurface::QueryInterface", 2, true, 0x500, ""},
      {"CoInitialize", 1, false, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {"CoCreateInstance", 1, true, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {"DirectDrawCreateEx", 1, true, 0x601, ""},
      {"IDirectDraw::SetCooperativeLevel", 2, false, 0x800, ""},
  };
  for (const auto& row : rows) {
    for (const DWORD code : {kFailure, DWORD{0}, kOtherSuccess}) {
      if (code != kFailure && !row.gives_object) continue;
      DirectXMachine machine(0x800);
      machine.machine.faults.FailNth(row.call, row.nth, code);
      ExpectVersion(row.call + std::string(" ") + std::to_string(code), machine, row.version,
                    row.debug_text);
    }
  }
}

TEST_F(DirectXTest, NothingIsHeldLongerThanNeeded) {
  DirectXMachine machine(0x800);
  const auto hold = [&](const char* call) {
    machine.machine.faults.AtCall(call, [&machine, call] {
      const auto& libraries = machine.machine.libraries;
      EXPECT_EQ(libraries.References("DDRAW.DLL"), 1u) << call;
      EXPECT_EQ(libraries.References("DINPUT.DLL"), 0u) << call;
      machine.debug_texts += std::to_string(machine.machine.handles.OpenObjects()["COM reference"]);
    });
  };
  for (const char* const call :
       {"IDirectDraw::SetCooperativeLevel", "IDirectDraw::CreateSurface",
        "IDirectDrawSurface::QueryInterface", "CoInitialize", "DirectDrawCreateEx"})
    hold(call);
  EXPECT_EQ(DetectDirectXVersion(), 0x800u);
  // The surface is asked twice; both objects have gone before COM is used.
  EXPECT_EQ(machine.debug_texts, "112200");
}

TEST_F(DirectXTest, ThreadThatHasInitialisedComKeepsIt) {
  DirectXMachine machine(0x800);
  ASSERT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(DetectDirectXVersion(), 0x800u);
  EXPECT_EQ(machine.machine.handles.OpenObjects()["COM initialisation"], 1);
  CoUninitialize();
}

// Makes the object and answers a success that is not 0.
HRESULT WINAPI CreateWithOtherSuccess(GUID* driver, IDirectDraw** object, IUnknown* outer) {
  const HRESULT result = DirectDrawCreate(driver, object, outer);
  return result == 0 ? S_FALSE : result;
}

TEST_F(DirectXTest, Acceleration) {
  using Arrange = void (*)(host::Machine&);
  const struct {
    const char* what;
    DWORD release;
    bool accelerates;
    Arrange arrange;
    const char* answer;
  } rows[] = {
      {"has it", 0x800, true, [](host::Machine&) {}, "Yes"},
      {"has it not", 0x500, false, [](host::Machine&) {}, "No"},
      {"too old", 0x300, true, [](host::Machine&) {}, "failed"},
      {"none", 0, true, [](host::Machine&) {}, "failed"},
      {"DDRAW.DLL is not loaded again", 0x800, true,
       [](host::Machine& m) { m.faults.FailNth("LoadLibraryA", 5, ERROR_MOD_NOT_FOUND); },
       "failed"},
      {"no object again", 0x800, true,
       [](host::Machine& m) { m.faults.FailNth("DirectDrawCreate", 2, kFailure); }, "failed"},
      {"a success without object", 0x800, true,
       [](host::Machine& m) { m.faults.FailNth("DirectDrawCreate", 2, 0); }, "failed"},
      {"an object with another success", 0x800, true,
       [](host::Machine& m) {
         m.libraries.Add(
             {.name = "DDRAW.DLL",
              .exports = {{"DirectDrawCreate", host::Export(&CreateWithOtherSuccess)}}});
       },
       "failed"},
      {"no capabilities", 0x800, true,
       [](host::Machine& m) { m.faults.FailAlways("IDirectDraw::GetCaps", kFailure); }, "failed"},
      {"capabilities with another success", 0x800, true,
       [](host::Machine& m) { m.faults.FailAlways("IDirectDraw::GetCaps", kOtherSuccess); },
       "failed"},
  };
  for (const auto& row : rows) {
    DirectXMachine machine(row.release);
    machine.machine.direct_x.accelerates_3d = row.accelerates;
    row.arrange(machine.machine);
    bool accelerated = true;
    const bool told = Has3DAcceleration(accelerated);
    EXPECT_STREQ(!told ? "failed" : accelerated ? "Yes" : "No", row.answer) << row.what;
    EXPECT_FALSE(!told && accelerated) << row.what;
  }
}

TEST(DirectXItems, Lines) {
  const auto version_line = [](const std::string& value) {
    return "DirectX version            " + value + "\r\n";
  };
  const auto line_3d = [](const std::string& value) {
    return "3D acceleration            " + value + "\r\n";
  };
  const struct {
    DWORD release;
    std::string registry;  // empty: no value
    std::string version;
    std::string answer_3d;
    const char* broken = nullptr;
  } rows[] = {
      {0, "", "No DirectX installed", ""},
      {0, "4.04.00.0068", "No DirectX installed (4.04.00.0068)", ""},
      {0x100, "", "1", ""},
      {0x200, "", "2", ""},
      {0x300, "", "3", ""},
      {0x800, "", "3 (DDraw isn't properly installed!)", "", "IDirectDraw::CreateSurface"},
      {0x500, "", "5", "No"},
      {0x600, "", "6", "No"},
      {0x601, "", "6.1", "No"},
      {0x700, "", "7", "No"},
      {0x800, "4.08.01.0881", "8 or better (4.08.01.0881)", "No"},
      {0x800, std::string(2000, 'x'), "8 or better (" + std::string(900, 'x') + ")", "No"},
  };
  for (const auto& row : rows) {
    test::ReportRun run;
    host::StateDirectX(run.machine(), row.release);
    if (!row.registry.empty()) {
      run.machine().registry.SetValue("HKLM\\Software\\Microsoft\\DirectX", "Version", REG_SZ,
                                      row.registry);
    }
    if (row.broken != nullptr) run.machine().faults.FailAlways(row.broken, kFailure);
    run.Run("[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n");
    EXPECT_EQ(run.LastSection(), version_line(row.version) + line_3d(row.answer_3d) + "\r\n");
    const std::string status = row.answer_3d.empty() ? "Failed" : "Ok";
    EXPECT_EQ(run.Progress(), (std::vector<std::string>{"DirectX version...       Ok",
                                                        "3D acceleration...       " + status}));
  }
  EXPECT_STREQ(DirectXVersionText(0x400), "Unknown version");
}

}  // namespace
}  // namespace hostscope
