#include "probes/devices/device_list.h"

#include "probes/devices/device_scanner.h"
#include "probes/devices/record_list.h"

namespace hostscope {
namespace {

const char* AttachedTo(const DeviceRecord& record) {
  return static_cast<const ModemRecord&>(record).attached_to;
}

const char* PortName(const DeviceRecord& record) {
  return static_cast<const PortRecord&>(record).port_name;
}

void WriteDeviceRecords(ReportWriter& report_of_run, const DeviceList& list,
                        const RecordArray& records) {
  WriteRecords<DeviceRecord>(
      report_of_run, list.list_name, records,
      [&list](ReportWriter& report, char* label, const DeviceRecord& record) {
        report.WriteDeviceBlock(label, record);
        if (list.extra_field != nullptr) {
          report.WriteFormatted(kTextFieldFormat, label, list.extra_field, list.extra_text(record));
        }
        report.WriteText(kLineEnd);
      });
}

}  // namespace

constinit const DeviceList kMediaDevices = {"Media devices", "MEDIA", sizeof(DeviceRecord)};
constinit const DeviceList kMonitors = {"Monitors", "Monitor", sizeof(DeviceRecord)};
constinit const DeviceList kVideoAdapters = {"Video adapters", "Display", sizeof(DeviceRecord)};
constinit const DeviceList kMouse = {"Mouse", "Mouse", sizeof(DeviceRecord)};
constinit const DeviceList kKeyboard = {"Keyboard", "Keyboard", sizeof(DeviceRecord)};
constinit const DeviceList kModems = {"Modems", "Modem", sizeof(ModemRecord), "Port", AttachedTo};
constinit const DeviceList kPorts = {"Ports", "Ports", sizeof(PortRecord), "Port name", PortName};
constinit const DeviceList kFloppyControllers = {"FDC", "fdc", sizeof(DeviceRecord)};
constinit const DeviceList kDiskControllers = {"HDC", "hdc", sizeof(DeviceRecord)};
constinit const DeviceList kScsiAdapters = {"SCSI", "SCSIAdapter", sizeof(DeviceRecord)};
constinit const DeviceList kUsbControllers = {"USB", "USB", sizeof(DeviceRecord)};

bool WriteDeviceList(ItemRun& run, const DeviceList& list) {
  RecordArray records;
  if (!records.Create(list.record_size) ||
      ScanDeviceClass(run.context, list.class_name, records) < 0) {
    return WriteFailedList(run.report, list.list_name);
  }
  if (records.count() == 0) {
    WriteEmptyList(run.report, list.list_name);
  } else {
    WriteDeviceRecords(run.report, list, records);
  }
  return true;
}

}  // namespace hostscope
