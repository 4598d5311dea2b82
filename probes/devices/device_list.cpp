#include "probes/devices/device_list.h"

#include "util/text.h"

namespace hostscope {
namespace {

void WriteNetCard(ReportWriter& report, const DeviceRecord& device) {
  const auto& card = static_cast<const NetCardRecord&>(device);
  if (card.ip_address[0] == '\0') return;
  report.WriteFormatted(kTextFieldFormat, "", "IP address", card.ip_address);
  report.WriteFormatted(kTextFieldFormat, "", "Subnet mask", card.subnet_mask);
  report.WriteFormatted(kTextFieldFormat, "", "DHCP enabled", YesOrNo(card.dhcp_enabled != 0));
}

void WriteModem(ReportWriter& report, const DeviceRecord& device) {
  const auto& modem = static_cast<const ModemRecord&>(device);
  report.WriteFormatted(kTextFieldFormat, "", "Port", modem.attached_to);
}

void WritePort(ReportWriter& report, const DeviceRecord& device) {
  const auto& port = static_cast<const PortRecord&>(device);
  report.WriteFormatted(kTextFieldFormat, "", "Port name", port.port_name);
}

}  // namespace

constinit const DeviceList kMediaDevices = {"Media devices", "MEDIA", sizeof(DeviceRecord)};
constinit const DeviceList kMonitors = {"Monitors", "Monitor", sizeof(DeviceRecord)};
constinit const DeviceList kVideoAdapters = {"Video adapters", "Display", sizeof(DeviceRecord)};
constinit const DeviceList kMouse = {"Mouse", "Mouse", sizeof(DeviceRecord)};
constinit const DeviceList kKeyboard = {"Keyboard", "Keyboard", sizeof(DeviceRecord)};
constinit const DeviceList kNetCards = {"Net cards", "Net", sizeof(NetCardRecord), WriteNetCard};
constinit const DeviceList kModems = {"Modems", "Modem", sizeof(ModemRecord), WriteModem};
constinit const DeviceList kPorts = {"Ports", "Ports", sizeof(PortRecord), WritePort};
constinit const DeviceList kFloppyControllers = {"FDC", "fdc", sizeof(DeviceRecord)};
constinit const DeviceList kDiskControllers = {"HDC", "hdc", sizeof(DeviceRecord)};
constinit const DeviceList kScsiAdapters = {"SCSI", "SCSIAdapter", sizeof(DeviceRecord)};
constinit const DeviceList kUsbControllers = {"USB", "USB", sizeof(DeviceRecord)};

bool WriteDeviceList(ItemRun& run, const DeviceList& list) {
  return WriteScannedList(run, list.list_name, list.class_name, list.record_size,
                          [&list](ReportWriter& report, char* label, const DeviceRecord& record) {
                            report.WriteDeviceBlock(label, record);
                            if (list.write_further != nullptr) list.write_further(report, record);
                            report.WriteText(kLineEnd);
                          });
}

}  // namespace hostscope
