#include "probes/devices/cdroms.h"

#include "probes/devices/device_scanner.h"
#include "probes/devices/record_list.h"
#include "probes/devices/scsi_map.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "CDROM";

void WriteScannedCdroms(ItemRun& run, const RecordArray& cdroms) {
  const bool has_letters = !run.context.is_nt();
  WriteRecords<CdromRecord>(
      run.report, kListName, cdroms,
      [has_letters](ReportWriter& report, char* label, const CdromRecord& cdrom) {
        report.WriteDeviceBlock(label, cdrom);
        report.WriteFormatted(kTextFieldFormat, label, "Autorun", YesOrNo(cdrom.autorun != 0));
        if (has_letters)
          report.WriteFormatted(kTextFieldFormat, label, "Drive letters", cdrom.drive_letters);
        report.WriteText(kLineEnd);
      });
}

void WriteScsiCdroms(ReportWriter& report_of_run, const RecordArray& cdroms) {
  WriteRecords<CdromRecord>(report_of_run, kListName, cdroms,
                            [](ReportWriter& report, char* label, const CdromRecord& cdrom) {
                              report.WriteFormatted(kTextFieldFormat, label, "Description",
                                                    cdrom.name);
                              report.WriteText(kLineEnd);
                            });
}

}  // namespace

bool FindScsiCdroms(const ProbeContext& context, RecordArray& cdroms) {
  return FindScsiUnits<CdromRecord>(context, "CdRomPeripheral", &CdromRecord::name, cdroms);
}

bool WriteCdroms(ItemRun& run) {
  RecordArray cdroms;
  if (!cdroms.Create(sizeof(CdromRecord))) return WriteFailedList(run.report, kListName);
  const std::int32_t count = ScanDeviceClass(run.context, "CDROM", cdroms);
  if (count > 0) {
    WriteScannedCdroms(run, cdroms);
    return true;
  }
  const bool in_scsi_map = cdroms.complete() && FindScsiCdroms(run.context, cdroms);
  if (!cdroms.complete()) return WriteFailedList(run.report, kListName);
  if (in_scsi_map) {
    WriteScsiCdroms(run.report, cdroms);
    return true;
  }
  if (count < 0) return WriteFailedList(run.report, kListName);
  char label[kListLabelSize];
  FormatListLabel(label, kListName, 0);
  run.report.WriteFormatted(kLabelLineFormat, label);
  return true;
}

}  // namespace hostscope
