// The DirectX release on machines of every release, with each step of finding it failing in turn;
// nothing stays open, whichever failed.
#include "probes/devices/directx.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

constexpr auto kFailure = static_cast<DWORD>(0x80004005);

// A machine of the release, and what it has told its debugger.
struct DirectXMachine : host::Machine {
  explicit DirectXMachine(DWORD release) : use(*this) {
    host::StateDirectX(*this, release);
    debugger = [this](const std::string& text) { debug_texts += text; };
  }
  ~DirectXMachine() {
    for (const auto& [kind, count] : handles.OpenObjects())
      ADD_FAILURE() << count << " left open: " << kind;
  }
  host::UseMachine use;
  std::string debug_texts;
};

TEST(DirectX, FirstStepThatFailsFixesTheNumber) {
  const struct {
    DWORD release;
    const char* library;   // absent, or without the function
    const char* function;  // of no library: the call of that number fails
    unsigned nth;
    DWORD version;
    const char* debug_text;
    bool gives_object = true;  // and may tell of success without one
  } rows[] = {
      {0x100, "", "", 0, 0x100, "Couldn't QI DDraw2\r\n"},
      {0x200, "", "", 0, 0x200, "Couldn't LoadLibrary DInput\r\n"},
      {0x600, "", "", 0, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {0x800, "DDRAW.DLL", "", 0, 0, ""},
      {0x800, "DDRAW.DLL", "DirectDrawCreate", 0, 0, "Couldn't LoadLibrary DDraw\r\n"},
      {0x800, "", "DirectDrawCreate", 1, 0, "Couldn't create DDraw\r\n"},
      {0x800, "", "IDirectDraw::QueryInterface", 1, 0x100, "Couldn't QI DDraw2\r\n"},
      {0x800, "DINPUT.DLL", "", 0, 0x200, "Couldn't LoadLibrary DInput\r\n"},
      {0x800, "DINPUT.DLL", "DirectInputCreateA", 0, 0x200,
       "Couldn't GetProcAddress DInputCreate\r\n"},
      {0x800, "", "IDirectDraw::SetCooperativeLevel", 1, 0x301, "Couldn't Set coop level\r\n",
       false},
      {0x800, "", "IDirectDraw::CreateSurface", 1, 0x301, "Couldn't CreateSurface\r\n"},
      {0x800, "", "IDirectDrawSurface::QueryInterface", 1, 0x300, ""},
      {0x800, "", "IDirectDrawSurface::QueryInterface", 2, 0x500, ""},
      {0x800, "OLE32.DLL", "", 0, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {0x800, "", "CoInitialize", 1, 0x600, "Couldn't create CLSID_DirectMusic\r\n", false},
      {0x800, "", "CoCreateInstance", 1, 0x600, "Couldn't create CLSID_DirectMusic\r\n"},
      {0x800, "DDRAW.DLL", "DirectDrawCreateEx", 0, 0x601, ""},
      {0x800, "", "DirectDrawCreateEx", 1, 0x601, ""},
      {0x800, "D3D8.DLL", "", 0, 0x700, ""},
  };
  for (const auto& row : rows) {
    for (const DWORD code : {kFailure, DWORD{0}, DWORD{1}}) {
      if (code != kFailure && (row.nth == 0 || !row.gives_object)) continue;
      DirectXMachine machine(row.release);
      if (row.nth != 0) {
        machine.faults.FailNth(row.function, row.nth, code);
      } else if (*row.function != '\0') {
        machine.libraries.RemoveExport(row.library, row.function);
      } else {
        machine.libraries.Remove(row.library);
      }
      const std::string what = "row " + std::to_string(&row - rows) + ", " + std::to_string(code);
      EXPECT_EQ(DetectDirectXVersion(), row.version) << what;
      EXPECT_EQ(machine.debug_texts, row.debug_text) << what;
    }
  }
}

TEST(DirectX, NothingIsHeldLongerThanNeeded) {
  DirectXMachine machine(0x800);
  ASSERT_EQ(CoInitialize(nullptr), S_OK);
  std::string held;
  for (const char* const call : {"IDirectDraw::SetCooperativeLevel",
                                 "IDirectDrawSurface::QueryInterface", "CoCreateInstance"}) {
    machine.faults.AtCall(call, [&] {
      EXPECT_EQ(machine.libraries.References("DINPUT.DLL"), 0u);
      held += std::to_string(machine.handles.OpenObjects()["COM reference"]);
    });
  }
  EXPECT_EQ(DetectDirectXVersion(), 0x800u);
  // The surface is asked twice; it and its maker have gone before COM is used.
  EXPECT_EQ(held, "1220");
  EXPECT_EQ(machine.handles.OpenObjects()["COM initialisation"], 1) << "the thread's own";
  CoUninitialize();
}

// Makes the object and answers a success that is not 0.
HRESULT WINAPI CreateWithOtherSuccess(GUID* driver, IDirectDraw** object, IUnknown* outer) {
  const HRESULT result = DirectDrawCreate(driver, object, outer);
  return result == 0 ? S_FALSE : result;
}

TEST(DirectX, AccelerationCanNotBeTold) {
  const struct {
    const char* broken;  // the call of that number answers the code
    unsigned nth;
    DWORD code;
  } rows[] = {
      {"LoadLibraryA", 5, ERROR_MOD_NOT_FOUND},
      {"DirectDrawCreate", 2, kFailure},
      {"DirectDrawCreate", 2, 0},
      {"CreateWithOtherSuccess", 0, 0},
      {"IDirectDraw::GetCaps", 1, kFailure},
      {"IDirectDraw::GetCaps", 1, 1},
  };
  for (const auto& row : rows) {
    DirectXMachine machine(0x800);
    machine.direct_x.accelerates_3d = true;
    if (row.nth != 0) {
      machine.faults.FailNth(row.broken, row.nth, row.code);
    } else {
      machine.libraries.Add(
          {.name = "DDRAW.DLL",
           .exports = {{"DirectDrawCreate", host::Export(&CreateWithOtherSuccess)}}});
    }
    bool accelerated = true;
    EXPECT_FALSE(Has3DAcceleration(accelerated)) << &row - rows;
    EXPECT_FALSE(accelerated) << &row - rows;
  }
}

TEST(DirectX, Items) {
  const struct {
    const char* broken;
    std::string registry;  // empty: no value
    std::string version;
    std::string answer_3d, status_3d;
  } rows[] = {
      {"IDirectDraw::CreateSurface", "", "3 (DDraw isn't properly installed!)", "", "Failed"},
      {"Sleep", std::string(2000, 'x'), "8 or better (" + std::string(900, 'x') + ")", "No", "Ok"},
  };
  for (const auto& row : rows) {
    test::ReportRun run;
    host::StateDirectX(run.machine(), 0x800);
    run.machine().faults.FailAlways(row.broken, kFailure);
    if (!row.registry.empty())
      run.machine().registry.SetValue("HKLM\\Software\\Microsoft\\DirectX", "Version", REG_SZ,
                                      row.registry);
    run.Run("[DIRECTX]\r\nVersion=1\r\n3DAcceleration=1\r\n");
    EXPECT_EQ(run.LastSection(), "DirectX version            " + row.version +
                                     "\r\n3D acceleration            " + row.answer_3d +
                                     "\r\n\r\n");
    EXPECT_EQ(run.Progress(),
              (std::vector<std::string>{"DirectX version...       Ok",
                                        "3D acceleration...       " + row.status_3d}));
  }
  // The others are in the kept reports of the described machines.
  const std::pair<DWORD, const char*> texts[] = {
      {0x100, "1"}, {0x200, "2"}, {0x600, "6"}, {0x400, "Unknown version"}};
  for (const auto& [version, text] : texts)
    EXPECT_STREQ(DirectXVersionText(version), text);
}

}  // namespace
}  // namespace hostscope
