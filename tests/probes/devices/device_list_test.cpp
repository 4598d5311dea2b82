// Which key lists which class of devices.

#include "probes/devices/device_list.h"

#include <gtest/gtest.h>

#include "tests/support/report_run.h"

namespace hostscope {
namespace {

TEST(DeviceLists, EachHasItsKeyAndItsClass) {
  const struct {
    const char *section, *key, *name, *device_class;
    const char* extra = nullptr;  // the further field
  } rows[] = {
      {"MULTIMEDIA", "MediaDevices", "Media devices", "MEDIA"},
      {"DISPLAY", "Monitors", "Monitors", "Monitor"},
      {"DISPLAY", "VideoAdapters", "Video adapters", "Display"},
      {"INPUT", "Mouse", "Mouse", "Mouse"},
      {"INPUT", "Keyboard", "Keyboard", "Keyboard"},
      {"COMMUNICATION", "Modems", "Modems", "Modem", "Port           :  COM2"},
      {"PORT", "Ports", "Ports", "Ports", "Port name      :  COM1"},
      {"DISK CONTROLLER", "FDC", "FDC", "fdc"},
      {"DISK CONTROLLER", "HDC", "HDC", "hdc"},
      {"DISK CONTROLLER", "SCSI", "SCSI", "SCSIAdapter"},
      {"USB", "Controllers", "USB", "USB"},
  };
  const std::string blanks(27, ' ');
  for (const auto& row : rows) {
    test::ReportRun run;
    run.machine().version = {.major = 4, .minor = 10, .build = 0x040A08AE, .platform_id = 1};
    host::Registry& registry = run.machine().registry;
    for (const char* const value : {"DeviceDesc", "Class"})
      registry.SetText("HKLM\\Enum\\A\\B\\1", value, row.device_class);
    registry.SetText("HKLM\\Enum\\A\\B\\1", "PORTNAME", "COM1");
    registry.SetText("HKLM\\Enum\\A\\B\\1", "Driver", "D");
    registry.SetText("HKLM\\System\\CurrentControlSet\\Services\\Class\\D", "AttachedTo", "COM2");
    run.Run(std::string("[") + row.section + "]\r\n" + row.key + "=1\r\n");
    std::string label = row.name + std::string(" (total 1)");
    label.resize(27, ' ');
    const std::string expected = label + "Description    :  " + row.device_class + "\r\n" + blanks +
                                 "Manufacturer   :  \r\n" + blanks + "Driver date    :  \r\n" +
                                 (row.extra == nullptr ? "" : blanks + row.extra + "\r\n") + "\r\n";
    EXPECT_EQ(run.LastSection().substr(0, expected.size()), expected) << row.key;
    EXPECT_EQ(run.Progress().size(), 1u) << row.key;
  }
}

}  // namespace
}  // namespace hostscope
