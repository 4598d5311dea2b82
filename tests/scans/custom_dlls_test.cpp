#include "scans/custom_dlls.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "profile/catalogue.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using Lines = std::vector<std::string>;

host::Library PlugInLibrary(host::Machine& machine, const char* name, const char* function,
                            host::PlugIn plug_in) {
  return {.name = name, .exports = {{function, machine.plug_ins.Add(std::move(plug_in))}}};
}

TEST(CustomDlls, WhatBecomesOfEachEntry) {
  test::ReportRun run;
  host::Machine& machine = run.machine();
  machine.libraries.Add(PlugInLibrary(machine, "good.dll", "Write", {.text = "line one\r\n"}));
  machine.libraries.Add(
      PlugInLibrary(machine, "a,b.dll", "Fn", {.succeeds = false, .text = "half a line"}));
  const auto open_before = machine.handles.OpenObjects();
  const std::string long_name = std::string(1500, 'n') + ".dll";
  run.Run(
      "[SYSTEM]\r\nTempFolder=1\r\n[CUSTOM DLLS]\r\ngood.dll,Write\r\na,b.dll,Fn\r\n"
      "good.dll,write\r\ngood.dll\r\ngood.dll,\r\nnone.dll,Write\r\n,Write\r\n" +
      long_name + ",Write\r\na name of 22 letters..,x\r\ngood.dll,Write\r\n");
  EXPECT_EQ(run.LastSection(), "line one\r\nhalf a lineline one\r\n");
  const Lines lines = run.Progress();
  EXPECT_EQ(Lines(lines.begin() + 1, lines.begin() + 9),
            (Lines{"Custom dlls:", "good.dll...              Ok", "a,b.dll...               Failed",
                   "good.dll...              NoFunc", "good.dll...              NoFunc",
                   "good.dll...              NoFunc", "none.dll...              Absent",
                   "...                      Absent"}));
  ASSERT_EQ(lines.size(), 12U);
  EXPECT_TRUE(lines[9].starts_with("nnnn") && lines[9].ends_with("nnn...Absent")) << lines[9];
  EXPECT_EQ(lines[10], "a name of 22 letters.....Absent");
  EXPECT_EQ(lines[11], "good.dll...              Ok");
  // Five loads of one library, each given back.
  EXPECT_EQ(machine.libraries.References("good.dll"), 0U);
  DestroyLists(run.settings());
  EXPECT_EQ(machine.handles.OpenObjects(), open_before);
}

// Only the low eight bits of the result count, what was written before is in the file, and the
// current folder is the program's whatever the one before has done.
TEST(CustomDlls, ResultPositionAndFolder) {
  static LONG position = 0;
  static Lines folders;
  const auto look = +[](HANDLE report) -> unsigned char {
    LONG high = 0;
    position = static_cast<LONG>(SetFilePointer(report, 0, &high, FILE_CURRENT));
    char current[MAX_PATH] = "";
    GetCurrentDirectoryA(MAX_PATH, current);
    folders.emplace_back(current);
    return SetCurrentDirectoryA("sub") ? 0x80 : 0;
  };
  const auto wide = +[](HANDLE) -> DWORD { return 0xFFFFFF00; };
  test::ReportRun run;
  run.machine().libraries.Add(
      {.name = "p.dll", .exports = {{"Look", host::Export(look)}, {"Wide", host::Export(wide)}}});
  run.folder().Write("sub/file", "");
  run.Run("[CUSTOM DLLS]\r\np.dll,Look\r\np.dll,Look\r\np.dll,Wide\r\n");
  EXPECT_EQ(position, static_cast<LONG>(run.Report().size()));
  EXPECT_EQ(run.Progress(),
            (Lines{"Custom dlls:", "p.dll...                 Ok", "p.dll...                 Ok",
                   "p.dll...                 Failed"}));
}

}  // namespace
}  // namespace hostscope
