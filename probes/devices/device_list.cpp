#include "probes/devices/device_list.h"

#include "probes/devices/device_scanner.h"
#include "util/text.h"

namespace hostscope {
namespace {

const char* AttachedTo(const DeviceRecord& record) {
  return static_cast<const ModemRecord&>(record).attached_to;
}

const char* PortName(const DeviceRecord& record) {
  return static_cast<const PortRecord&>(record).port_name;
}

void WriteRecords(ReportWriter& report, const DeviceList& list, const RecordArray& records) {
  char label[kListLabelSize];
  FormatListLabel(label, list.list_name, records.count());
  if (records.count() == 0) report.WriteFormatted("%s\r\n", label);
  for (int i = 0; i < records.count(); ++i) {
    const auto& record = *records.GetAs<DeviceRecord>(i);
    report.WriteDeviceBlock(label, record);
    if (list.extra_field != nullptr) {
      report.WriteFormatted(kTextFieldFormat, label, list.extra_field, list.extra_text(record));
    }
    report.WriteText(kLineEnd);
  }
}

}  // namespace

constinit const DeviceList kMediaDevices = {"Media devices", "MEDIA", sizeof(DeviceRecord)};
constinit const DeviceList kMonitors = {"Monitors", "Monitor", sizeof(DeviceRecord)};
constinit const DeviceList kVideoAdapters = {"Video adapters", "Display", sizeof(DeviceRecord)};
constinit const DeviceList kMouse = {"Mouse", "Mouse", sizeof(DeviceRecord)};
constinit const DeviceList kKeyboard = {"Keyboard", "Keyboard", sizeof(DeviceRecord)};
constinit const DeviceList kModems = {"Modems", "Modem", sizeof(ModemRecord), "Port", AttachedTo};
constinit const DeviceList kPorts = {"Ports", "Ports", sizeof(PortRecord), "Port name", PortName};

void FormatListLabel(std::span<char> label, const char* list_name, int count) {
  char text[kFormattedSize + 1] = {};
  wsprintfA(text, "%s (total %u)", list_name, static_cast<unsigned>(count));
  EndFormatted(text);
  CopyText(label.data(), label.size(), text);
}

bool WriteDeviceList(ItemRun& run, const DeviceList& list) {
  RecordArray records;
  const bool examined = records.Create(list.record_size) &&
                        ScanDeviceClass(run.context, list.class_name, records) >= 0;
  if (examined) {
    WriteRecords(run.report, list, records);
  } else {
    run.report.WriteFormatted("%-27s\r\n", list.list_name);
  }
  return examined;
}

}  // namespace hostscope
