// The lists of devices as the report shows them.

#include "probes/devices/device_list.h"

#include <gtest/gtest.h>

#include "platform/host/reg_file.h"
#include "tests/support/report_run.h"

namespace hostscope {
namespace {

std::string Line(const std::string& label, const std::string& field, const std::string& value) {
  std::string line = label;
  line.resize(std::max<std::size_t>(label.size(), 27), ' ');
  line += field;
  line.resize(line.size() + 15 - field.size(), ' ');
  return line + ":  " + value + "\r\n";
}

std::string Block(const std::string& label, const std::string& name, const std::string& extra) {
  return Line(label, "Description", name) + Line("", "Manufacturer", "") +
         Line("", "Driver date", "") + extra + "\r\n";
}

// Every list: empty, with one device and with two, and with a set that cannot be opened.
TEST(DeviceLists, InTheReport) {
  const struct {
    const char* section;
    const char* banner;
    const char* key;
    const char* name;  // of the list
    const char* device_class;
    const char* extra;
    const char* progress;
  } rows[] = {
      {"MULTIMEDIA", "MULTIMEDIA", "MediaDevices", "Media devices", "MEDIA", nullptr,
       "Media devices...         "},
      {"DISPLAY", "DISPLAY", "Monitors", "Monitors", "Monitor", nullptr,
       "Monitors...              "},
      {"DISPLAY", "DISPLAY", "VideoAdapters", "Video adapters", "Display", nullptr,
       "Video adapters...        "},
      {"INPUT", "INPUT", "Mouse", "Mouse", "Mouse", nullptr, "Mouse...                 "},
      {"INPUT", "INPUT", "Keyboard", "Keyboard", "Keyboard", nullptr, "Keyboard...              "},
      {"COMMUNICATION", "COMMUNICATION", "Modems", "Modems", "Modem", "Port",
       "Modems...                "},
      {"PORT", "PORTS", "Ports", "Ports", "Ports", "Port name", "Ports...                 "},
  };
  for (const auto& row : rows) {
    test::ReportRun run;
    run.machine().version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
    const auto expect = [&](const std::string& section, const char* status) {
      run.Run(std::string("[") + row.section + "]\r\n" + row.key + "=1\r\n");
      EXPECT_EQ(run.LastSection(), section) << row.name;
      EXPECT_NE(run.Report().find(std::string("= ") + row.banner + " ="), std::string::npos);
      EXPECT_EQ(run.Progress().back(), std::string(row.progress) + status);
    };
    const std::string name = row.name;
    // Behind the sections before it stands the empty line of the network section.
    const bool after_network =
        std::string(row.section) == "COMMUNICATION" || std::string(row.section) == "PORT";
    const std::string end = after_network ? "" : "\r\n";
    expect(name + " (total 0)\r\n" + end, "Ok");
    const std::string device_class = std::string("\"Class\"=\"") + row.device_class + "\"\n";
    ASSERT_FALSE(host::ReadRegText("REGEDIT4\n[HKLM\\Enum\\A\\B\\1]\n" + device_class +
                                       "\"DeviceDesc\"=\"One\"\n[HKLM\\Enum\\A\\B\\2]\n" +
                                       device_class +
                                       "\"DeviceDesc\"=\"Two\"\n\"PORTNAME\"=\"COM1\"\n"
                                       "\"Driver\"=\"D\\\\0\"\n[HKLM\\System\\CurrentControlSet\\"
                                       "Services\\Class\\D\\0]\n\"AttachedTo\"=\"COM1\"\n",
                                   run.machine().registry));
    const auto extra = [&](const char* value) {
      return row.extra == nullptr ? "" : Line("", row.extra, value);
    };
    expect(Block(name + " (total 2)", "One", extra("")) + Block("", "Two", extra("COM1")) + end,
           "Ok");
    run.machine().faults.FailNth("SetupDiGetClassDevsA", 1, ERROR_ACCESS_DENIED);
    std::string alone = name;
    alone.resize(27, ' ');
    expect(alone + "\r\n" + end, "Failed");
  }
}

TEST(DeviceLists, LabelsAreCutToTheirField) {
  host::Machine machine;
  const host::UseMachine use(machine);
  char label[16] = {};
  FormatListLabel(label, "Ports", 2);
  EXPECT_STREQ(label, "Ports (total 2)");
  FormatListLabel(label, std::string(2000, 'x').c_str(), 0);
  EXPECT_EQ(label, std::string(15, 'x'));
}

}  // namespace
}  // namespace hostscope
