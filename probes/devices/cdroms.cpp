#include "probes/devices/cdroms.h"

#include "probes/devices/device_scanner.h"
#include "probes/devices/record_list.h"
#include "util/registry.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "CDROM";

// Ports, buses, targets and units are each looked for by these numbers.
constexpr unsigned kScsiNumbers = 4;

// Whether the unit's key is that of a CD-ROM drive with an identifier, which becomes its name.
bool ReadScsiUnit(const char* key, CdromRecord& cdrom) {
  const OwnedText type = ReadRegistryValue(HKEY_LOCAL_MACHINE, key, "Type").AsText();
  if (!SameTextIgnoringCase(type.c_str(), "CdRomPeripheral")) return false;
  const RegistryValue identifier = ReadRegistryValue(HKEY_LOCAL_MACHINE, key, "Identifier");
  CopyText(cdrom.name, identifier.AsText().c_str());
  return identifier.present();
}

void WriteScannedCdroms(ItemRun& run, const RecordArray& cdroms) {
  const bool has_letters = !run.context.is_nt();
  WriteRecords<CdromRecord>(
      run.report, kListName, cdroms,
      [has_letters](ReportWriter& report, char* label, const CdromRecord& cdrom) {
        report.WriteDeviceBlock(label, cdrom);
        report.WriteFormatted(kTextFieldFormat, label, "Autorun",
                              cdrom.autorun != 0 ? "Yes" : "No");
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
  if (!context.is_nt()) return false;
  bool found = false;
  for (unsigned number = 0; number < kScsiNumbers * kScsiNumbers * kScsiNumbers * kScsiNumbers;
       ++number) {
    const unsigned unit = number % kScsiNumbers;
    const unsigned target = number / kScsiNumbers % kScsiNumbers;
    const unsigned bus = number / (kScsiNumbers * kScsiNumbers) % kScsiNumbers;
    const unsigned port = number / (kScsiNumbers * kScsiNumbers * kScsiNumbers);
    char key[128];
    wsprintfA(key,
              "HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port %u\\Scsi Bus %u\\Target Id %u"
              "\\Logical Unit Id %u",
              port, bus, target, unit);
    CdromRecord cdrom = {};
    if (ReadScsiUnit(key, cdrom)) found |= cdroms.Append(&cdrom) >= 0;
  }
  return found;
}

bool WriteCdroms(ItemRun& run) {
  RecordArray cdroms;
  cdroms.Create(sizeof(CdromRecord));
  const std::int32_t count = ScanDeviceClass(run.context, "CDROM", cdroms);
  if (count > 0) {
    WriteScannedCdroms(run, cdroms);
    return true;
  }
  if (FindScsiCdroms(run.context, cdroms)) {
    WriteScsiCdroms(run.report, cdroms);
    return true;
  }
  if (count < 0) return WriteFailedList(run.report, kListName);
  char label[kListLabelSize];
  FormatListLabel(label, kListName, 0);
  run.report.WriteFormatted("%-27s\r\n", label);
  return true;
}

}  // namespace hostscope
