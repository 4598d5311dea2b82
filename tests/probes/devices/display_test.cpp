// The display's resolution, colours and font, and joysticks, as the report tells them.
#include "probes/devices/display.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

using host::Machine;
using test::ReportRun;

const std::string kCurrent = "CurrentResolusion=1\r\n";
const std::string kMax = "MaxResolusion=1\r\n";
const std::string kCurrentBits = "CurrentBitsPixel=1\r\n";
const std::string kMaxBits = "MaxBitsPixel=1\r\n";

struct Row {
  const char* section;
  std::string keys;
  std::function<void(Machine&)> describe;
  std::string lines;
  std::string status;
};

std::function<void(Machine&)> Modes(std::vector<host::DisplayMode> modes) {
  return [modes](Machine& machine) { machine.display.modes = modes; };
}

std::function<void(Machine&)> Failing(std::vector<const char*> functions) {
  return [functions](Machine& machine) {
    for (const char* const function : functions)
      machine.faults.FailAlways(function, ERROR_NOT_SUPPORTED);
  };
}

std::function<void(Machine&)> FontHeight(LONG height) {
  return [height](Machine& machine) { machine.display.system_font_height = height; };
}

std::function<void(Machine&)> Connected(UINT slots, std::vector<UINT> numbers) {
  return [=](Machine& machine) { machine.joysticks = {slots, numbers}; };
}

std::string Line(const char* label, const std::string& value) {
  return label + std::string(27 - std::strlen(label), ' ') + value + "\r\n";
}

void WithoutModes(Machine& machine) {
  machine.libraries.RemoveExport("USER32.DLL", "EnumDisplaySettingsA");
}

void ExpectRows(const std::vector<Row>& rows, const std::string& progress) {
  for (const Row& row : rows) {
    SCOPED_TRACE("row " + std::to_string(&row - rows.data()) + ": " + row.keys);
    ReportRun run;
    run.machine().desktop.bits_per_pixel = 4;
    row.describe(run.machine());
    run.Run(std::string("[") + row.section + "]\r\n" + row.keys);
    // Behind the items stands the empty line of the network section.
    EXPECT_EQ(run.LastSection(), row.lines + "\r\n");
    std::string line = progress;
    line.resize(25, ' ');
    EXPECT_EQ(run.Progress(), std::vector<std::string>{line + row.status});
    for (const char* const kind : {"device context", "library"})
      EXPECT_FALSE(run.machine().handles.OpenObjects().contains(kind)) << kind;
  }
}

TEST(Display, Resolution) {
  const auto line = [](const std::string& value) { return Line("Resolution", value); };
  const auto both_fail = Failing({"CreateICA", "EnumDisplaySettingsA"});
  const std::vector<Row> rows = {
      {"DISPLAY", kCurrent + kMax, Modes({}), line("current: 800x600, maximum: 800x600"), "Ok"},
      {"DISPLAY", kMax, Modes({{1600, 1200, 8}, {1920, 1080, 8}}), line("maximum: 1600x1200"),
       "Ok"},
      {"DISPLAY", kMax, Modes({{1920, 1080, 8}, {1920, 1200, 8}}), line("maximum: 1920x1200"),
       "Ok"},
      {"DISPLAY", kMax, Modes({{640, 480, 4}, {800, 400, 4}, {600, 600, 4}, {640, 481, 8}}),
       line("maximum: 640x481"), "Ok"},
      {"DISPLAY", kMax, Modes({{0x7FFFFFFF, 480, 8}, {0x80000000, 480, 8}}),
       line("maximum: 2147483648x480"), "Ok"},
      {"DISPLAY", kCurrent, Modes({{1024, 768, 8}}), line("current: 800x600"), "Ok"},
      {"DISPLAY", kCurrent + kMax, Failing({"CreateICA"}), line("current: 0x0, maximum: 800x600"),
       "Ok"},
      {"DISPLAY", kCurrent, Failing({"CreateICA"}), line("current: 0x0"), "Ok"},
      {"DISPLAY", kMax, Failing({"EnumDisplaySettingsA"}), line("maximum: 0x0"), "Ok"},
      {"DISPLAY", kCurrent + kMax, WithoutModes, line("current: 800x600, maximum: 0x0"), "Ok"},
      {"DISPLAY", kMax, both_fail, line(""), "Failed"},
  };
  ExpectRows(rows, "Display resolution...");
}

TEST(Display, Colors) {
  const auto line = [](const std::string& value) { return Line("Colors (bpp)", value); };
  const std::vector<Row> rows = {
      // The current depth is that of one of the four planes.
      {"DISPLAY", kCurrentBits + kMaxBits, Modes({}), line("current: 1, maximum: 4"), "Ok"},
      {"DISPLAY", kMaxBits, Modes({{640, 480, 8}, {640, 480, 32}, {1024, 768, 16}}),
       line("maximum: 32"), "Ok"},
      {"DISPLAY", kCurrentBits, [](Machine& machine) { machine.desktop.bits_per_pixel = 24; },
       line("current: 24"), "Ok"},
      {"DISPLAY", kCurrentBits + kMaxBits, Failing({"CreateICA"}), line("current: 0, maximum: 4"),
       "Ok"},
      {"DISPLAY", kMaxBits, Failing({"EnumDisplaySettingsA"}), line("maximum: 0"), "Ok"},
      {"DISPLAY", kCurrentBits, Failing({"CreateICA", "EnumDisplaySettingsA"}), line(""), "Failed"},
  };
  ExpectRows(rows, "Display colors...");
}

TEST(Display, LargeFont) {
  const auto line = [](const std::string& value) { return Line("Large font", value); };
  const std::string key = "LargeFont=1\r\n";
  const std::vector<Row> rows = {
      {"DISPLAY", key, FontHeight(16), line("No"), "Ok"},
      {"DISPLAY", key, FontHeight(17), line("Yes"), "Ok"},
      {"DISPLAY", key, FontHeight(20), line("Yes"), "Ok"},
      {"DISPLAY", key, Failing({"GetDesktopWindow"}), line(""), "Failed"},
      {"DISPLAY", key, Failing({"GetWindowDC"}), line(""), "Failed"},
      {"DISPLAY", key, Failing({"GetTextMetricsA"}), line(""), "Failed"},
  };
  ExpectRows(rows, "Large font...");
}

TEST(Joysticks, PresentWhenOneAnswers) {
  const auto line = [](const std::string& value) { return Line("Joystick", value); };
  const std::string key = "Joysticks=1\r\n";
  const std::vector<Row> rows = {
      {"INPUT", key, Connected(16, {}), line("not present"), "Ok"},
      {"INPUT", key, Connected(2, {}), line("not present"), "Ok"},
      {"INPUT", key, Connected(2, {1}), line("present"), "Ok"},
      {"INPUT", key, Connected(1, {1}), line("not present"), "Ok"},
      {"INPUT", key, Failing({"joyGetNumDevs"}), line("not present"), "Ok"},
      {"INPUT", key, [](Machine& machine) { machine.libraries.Remove("WINMM.DLL"); },
       line("not present"), "Ok"},
  };
  ExpectRows(rows, "Joystick...");
}

TEST(DisplayAndInput, NothingWithoutASwitch) {
  ReportRun run;
  run.Run("[DISPLAY]\r\nLargeFont=0\r\n[DIRECTX]\r\nVersion=0\r\n[INPUT]\r\nJoysticks=0\r\n");
  EXPECT_EQ(run.LastSection(), "no banner");
}

}  // namespace
}  // namespace hostscope
