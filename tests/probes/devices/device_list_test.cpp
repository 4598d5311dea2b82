// The lists of devices as the report shows them.

#include "probes/devices/device_list.h"

#include <gtest/gtest.h>

#include <set>

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

// Each list empty, with two devices, and without a set of them.
TEST(DeviceLists, InTheReport) {
  const struct {
    const char* section;
    const char* key;
    const char* name;  // of the list
    const char* device_class;
    const char* extra;
    const char* progress;
  } rows[] = {
      {"MULTIMEDIA", "MediaDevices", "Media devices", "MEDIA", "", "Media devices...         "},
      {"DISPLAY", "Monitors", "Monitors", "Monitor", "", "Monitors...              "},
      {"DISPLAY", "VideoAdapters", "Video adapters", "Display", "", "Video adapters...        "},
      {"INPUT", "Mouse", "Mouse", "Mouse", "", "Mouse...                 "},
      {"INPUT", "Keyboard", "Keyboard", "Keyboard", "", "Keyboard...              "},
      {"COMMUNICATION", "Modems", "Modems", "Modem", "Port", "Modems...                "},
      {"PORT", "Ports", "Ports", "Ports", "Port name", "Ports...                 "},
      {"DISK CONTROLLER", "FDC", "FDC", "fdc", "", "FDC...                   "},
      {"DISK CONTROLLER", "HDC", "HDC", "hdc", "", "HDC...                   "},
      {"DISK CONTROLLER", "SCSI", "SCSI", "SCSIAdapter", "", "SCSI...                  "},
      {"USB", "Controllers", "USB", "USB", "", "USB...                   "},
  };
  for (const auto& row : rows) {
    test::ReportRun run;
    run.machine().version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
    const std::string name = row.name;
    const std::string extra = row.extra;
    // Behind the sections before the network's stands the empty line of that.
    const bool is_before_network =
        std::set<std::string>{"MULTIMEDIA", "DISPLAY", "INPUT"}.contains(row.section);
    const std::string end = is_before_network ? "\r\n" : "";
    const auto expect = [&](const std::string& lines, const char* status) {
      run.Run(std::string("[") + row.section + "]\r\n" + row.key + "=1\r\n");
      EXPECT_EQ(run.LastSection(), lines + end) << name;
      EXPECT_NE(run.Report().find(std::string("= ") + row.section), std::string::npos) << name;
      EXPECT_EQ(run.Progress().back(), std::string(row.progress) + status);
    };
    expect(name + " (total 0)\r\n", "Ok");
    host::Registry& registry = run.machine().registry;
    for (const char* const device : {"HKLM\\Enum\\A\\B\\1", "HKLM\\Enum\\A\\B\\2"}) {
      registry.SetText(device, "Class", row.device_class);
      registry.SetText(device, "DeviceDesc", std::string("Device ") + device[14]);
    }
    registry.SetText("HKLM\\Enum\\A\\B\\2", "PORTNAME", "COM1");
    registry.SetText("HKLM\\Enum\\A\\B\\2", "Driver", "D");
    registry.SetText("HKLM\\System\\CurrentControlSet\\Services\\Class\\D", "AttachedTo", "COM1");
    const auto extra_line = [&](const char* value) {
      return extra.empty() ? "" : Line("", extra, value);
    };
    expect(Block(name + " (total 2)", "Device 1", extra_line("")) +
               Block("", "Device 2", extra_line("COM1")),
           "Ok");
    run.machine().faults.FailNth("SetupDiGetClassDevsA", 1, ERROR_ACCESS_DENIED);
    expect(name + std::string(27 - name.size(), ' ') + "\r\n", "Failed");
  }
}

}  // namespace
}  // namespace hostscope
