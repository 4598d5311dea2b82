#include "probes/devices/disk_drives.h"

#include <cstring>

#include "platform/disk_control.h"
#include "probes/devices/ata_identify.h"
#include "probes/devices/device_list.h"
#include "probes/devices/scsi_map.h"
#include "util/handles.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "HDD";

// --- Asking the disk driver of NT ---

constexpr unsigned kFirstPacketBit = 4;

// False also when the drive is no IDE device.
bool ReadSmartVersion(const FileHandle& device, SmartVersion& version) {
  DWORD returned = 0;
  return DeviceIoControl(device.get(), kSmartGetVersion, nullptr, 0, &version, sizeof version,
                         &returned, nullptr) != 0 &&
         version.device_map != 0;
}

IdentifyRequest RequestFor(unsigned drive, const SmartVersion& version) {
  const bool takes_packets = (version.device_map >> (drive + kFirstPacketBit) & 1) != 0;
  IdentifyRequest request = {};
  request.buffer_size = kIdentifyBlockSize;
  request.sector_count = 1;
  request.sector_number = 1;
  request.drive_head = DriveHeadOf(drive);
  request.command = takes_packets ? kIdentifyPacketDevice : kIdentifyDevice;
  request.drive_number = static_cast<std::uint8_t>(drive);
  return request;
}

// What a driver that gives less leaves out stays zero.
bool AskDiskDriver(unsigned drive, IdentifyBlock& block) {
  char name[32];
  wsprintfA(name, "\\\\.\\PhysicalDrive%d", static_cast<int>(drive));
  const FileHandle device = FileHandle::OpenDevice(name, GENERIC_READ | GENERIC_WRITE);
  SmartVersion version = {};
  if (!device.open() || !ReadSmartVersion(device, version)) return false;
  IdentifyRequest request = RequestFor(drive, version);
  IdentifyAnswer answer = {};
  DWORD returned = 0;
  if (DeviceIoControl(device.get(), kSmartReceiveDriveData, &request, sizeof request, &answer,
                      sizeof answer, &returned, nullptr) == 0) {
    return false;
  }
  static_assert(sizeof block == sizeof answer.block);
  std::memcpy(block.data(), answer.block, sizeof answer.block);
  return true;
}

bool AppendIdentified(unsigned drive, const IdentifyBlock& block, RecordArray& drives) {
  const DiskDriveRecord record = DecodeIdentifyBlock(drive, block);
  return drives.Append(&record) >= 0;
}

// --- Lines ---

void WriteModelLine(ReportWriter& report, const char* label, const char* model) {
  report.WriteFormatted(kWideTextFieldFormat, label, "Model", model);
}

void WriteIdentified(ReportWriter& report, const char* label, const DiskDriveRecord& drive) {
  WriteModelLine(report, label, drive.model);
  const struct {
    const char* field;
    const char* text;
  } texts[] = {{"Controller", drive.controller},
               {"Drive", drive.drive},
               {"Serial number", drive.serial_number},
               {"Revision number", drive.revision},
               {"Type", drive.type}};
  for (const auto& [field, text] : texts)
    report.WriteFormatted(kWideTextFieldFormat, "", field, text);
  const struct {
    const char* field;
    std::uint32_t number;
  } numbers[] = {{"Cylinders", drive.cylinders},
                 {"Heads", drive.heads},
                 {"Sectors per track", drive.sectors_per_track}};
  for (const auto& [field, number] : numbers)
    report.WriteFormatted(kWideNumberFieldFormat, "", field, static_cast<unsigned>(number));
  report.WriteText(kLineEnd);
}

void WriteScsiDisk(ReportWriter& report, const char* label, const DiskDriveRecord& drive) {
  WriteModelLine(report, label, drive.model);
  report.WriteText(kLineEnd);
}

void WriteScannedDisk(ReportWriter& report, const char* label, const DeviceRecord& drive) {
  WriteModelLine(report, label, drive.name);
  report.WriteText(kLineEnd);
}

}  // namespace

bool IdentifyIdeDrives(const ProbeContext& context, RecordArray& drives) {
  const auto ask = context.is_nt() ? AskDiskDriver : ReadIdentifyBlock;
  bool found = false;
  for (unsigned drive = 0; drive < kIdeDrives; ++drive) {
    IdentifyBlock block = {};
    if (ask(drive, block)) found |= AppendIdentified(drive, block, drives);
  }
  return found;
}

bool FindScsiDisks(const ProbeContext& context, RecordArray& drives) {
  return FindScsiUnits<DiskDriveRecord>(context, "DiskPeripheral", &DiskDriveRecord::model, drives);
}

bool WriteDiskDrives(ItemRun& run) {
  RecordArray drives;
  if (!drives.Create(sizeof(DiskDriveRecord))) return WriteFailedList(run.report, kListName);
  if (IdentifyIdeDrives(run.context, drives)) {
    WriteRecords<DiskDriveRecord>(run.report, kListName, drives, WriteIdentified);
    return true;
  }
  const bool in_scsi_map = FindScsiDisks(run.context, drives);
  if (!drives.complete()) return WriteFailedList(run.report, kListName);
  if (in_scsi_map) {
    WriteRecords<DiskDriveRecord>(run.report, kListName, drives, WriteScsiDisk);
    return true;
  }
  return WriteScannedList(run, kListName, "DiskDrive", sizeof(DeviceRecord), WriteScannedDisk);
}

}  // namespace hostscope
