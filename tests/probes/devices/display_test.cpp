// The display's resolution, colours and font, and joysticks, as the report tells them.
#include "probes/devices/display.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using Modes = std::vector<host::DisplayMode>;

TEST(DisplayAndInput, Items) {
  const std::string resolution = "Display resolution...", colors = "Display colors...",
                    font = "Large font...", joystick = "Joystick...";
  const std::string current = "[DISPLAY]\r\nCurrentResolusion=1\r\n",
                    max = "[DISPLAY]\r\nMaxResolusion=1\r\n",
                    both = current + "MaxResolusion=1\r\n",
                    bits = "[DISPLAY]\r\nCurrentBitsPixel=1\r\n",
                    max_bits = "[DISPLAY]\r\nMaxBitsPixel=1\r\n",
                    both_bits = bits + "MaxBitsPixel=1\r\n", large = "[DISPLAY]\r\nLargeFont=1\r\n",
                    sticks = "[INPUT]\r\nJoysticks=1\r\n";
  const struct {
    std::string progress, profile, value;
    Modes modes = {};
    std::vector<const char*> broken = {};
    LONG font_height = 16;
    host::Joysticks joysticks = {};
  } rows[] = {
      {resolution, both, "current: 800x600, maximum: 800x600"},
      {resolution, max, "maximum: 1600x1200", {{1600, 1200, 8}, {1920, 1080, 8}}},
      {resolution, max, "maximum: 1920x1200", {{1920, 1080, 8}, {1920, 1200, 8}}},
      {resolution, max, "maximum: 640x481", {{640, 480, 4}, {800, 400, 4}, {640, 481, 8}}},
      {resolution, max, "maximum: 2147483648x9", {{2147483647, 9, 8}, {2147483648, 9, 8}}},
      {resolution, current, "current: 800x600", {{1024, 768, 8}}},
      {resolution, max, "Failed", {}, {"CreateICA", "EnumDisplaySettingsA"}},
      // The current depth is that of one of the four planes.
      {colors, both_bits, "current: 1, maximum: 4"},
      {colors, max_bits, "maximum: 32", {{640, 480, 8}, {640, 480, 32}, {1024, 768, 16}}},
      {colors, bits, "Failed", {}, {"CreateICA", "EnumDisplaySettingsA"}},
      {font, large, "No"},
      {font, large, "Yes", {}, {}, 17},
      {joystick, sticks, "not present", {}, {}, 16, {2, {}}},
      {joystick, sticks, "present", {}, {}, 16, {2, {1}}},
      {joystick, sticks, "not present", {}, {}, 16, {1, {1}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE("row " + std::to_string(&row - rows) + ": " + row.profile);
    test::ReportRun run;
    host::Machine& machine = run.machine();
    machine.desktop.bits_per_pixel = 4;
    machine.display = {row.modes, row.font_height};
    machine.joysticks = row.joysticks;
    for (const char* const function : row.broken)
      machine.faults.FailAlways(function, ERROR_NOT_SUPPORTED);
    run.Run(row.profile);
    const bool failed = row.value == "Failed";
    // Behind the label; behind the item stands the empty line of the network section.
    EXPECT_EQ(run.LastSection().substr(27), (failed ? "" : row.value) + "\r\n\r\n");
    std::string line = row.progress;
    line.resize(25, ' ');
    EXPECT_EQ(run.Progress(), std::vector<std::string>{line + (failed ? "Failed" : "Ok")});
    for (const char* const kind : {"device context", "library"})
      EXPECT_FALSE(machine.handles.OpenObjects().contains(kind)) << kind;
  }
}

// A driver whose modes have no end, each wider than the one before.
BOOL WINAPI ListModeWithoutEnd(LPCSTR, DWORD index, LPDEVMODEA mode) {
  mode->dmPelsWidth = index + 1;
  return TRUE;
}

TEST(DisplayAndInput, ModesWithoutEndAreGivenUp) {
  test::ReportRun run;
  run.machine().libraries.Add(
      {.name = "USER32.DLL",
       .exports = {{"EnumDisplaySettingsA", host::Export(&ListModeWithoutEnd)}}});
  run.Run("[DISPLAY]\r\nMaxResolusion=1\r\n");
  EXPECT_EQ(run.LastSection(), "Resolution                 maximum: 65536x0\r\n\r\n");
}

}  // namespace
}  // namespace hostscope
