#include "probes/devices/logical_disks.h"

#include "probes/devices/floppy_format.h"
#include "probes/devices/record_list.h"
#include "util/error_mode.h"
#include "util/library.h"
#include "util/number_text.h"
#include "util/numbers.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr char kListName[] = "Logical disks";

// --- Asking the system ---

constexpr NumberText kDriveTypes[] = {{DRIVE_NO_ROOT_DIR, "no_root_dir"},
                                      {DRIVE_REMOVABLE, "removable"},
                                      {DRIVE_FIXED, "fixed"},
                                      {DRIVE_REMOTE, "network"},
                                      {DRIVE_CDROM, "CDROM"},
                                      {DRIVE_RAMDISK, "RAM disk"}};

// Texts one behind the other, with an empty one at the end. Absent when the system does not give
// them, and when there is no memory.
HeapBuffer ReadRoots() {
  constexpr DWORD kMost = 0x10000;
  // A drive may come between two calls, and then the list is asked for again.
  constexpr int kMostTries = 4;
  DWORD size = GetLogicalDriveStringsA(0, nullptr);
  for (int i = 0; i < kMostTries && size != 0 && size <= kMost; ++i) {
    // A system may leave the last zero out of its answer. Another one lies behind what it may fill.
    const DWORD room = size + 1;
    HeapBuffer roots(room + 1);
    size = roots.present() ? GetLogicalDriveStringsA(room, roots.data()) : 0;
    if (size != 0 && size <= room) return roots;
  }
  return {};
}

struct DiskSpace {
  std::uint64_t total = 0;
  std::uint64_t total_free = 0;
  std::uint64_t available_free = 0;
};

// Windows 95 has it from OSR2 on, NT from 4.0 on.
constexpr std::array<const char*, 1> kWideFunctions = {"GetDiskFreeSpaceExA"};
using WideFunction = BOOL(WINAPI*)(LPCSTR root, ULARGE_INTEGER* available, ULARGE_INTEGER* total,
                                   ULARGE_INTEGER* total_free);

DiskSpace ReadWideSpace(WideFunction ask, const char* root) {
  ULARGE_INTEGER available = {}, total = {}, total_free = {};
  if (ask(root, &available, &total, &total_free) == 0) return {};
  return {total.QuadPart, total_free.QuadPart, available.QuadPart};
}

DiskSpace ReadClusterSpace(const char* root) {
  DWORD sectors = 0, bytes = 0, free_clusters = 0, clusters = 0;
  if (GetDiskFreeSpaceA(root, &sectors, &bytes, &free_clusters, &clusters) == 0) return {};
  const std::uint32_t bytes_per_cluster = sectors * bytes;
  const std::uint64_t total_free = std::uint64_t{bytes_per_cluster} * free_clusters;
  return {std::uint64_t{bytes_per_cluster} * clusters, total_free, total_free};
}

DiskSpace ReadSpace(const char* root) {
  BoundLibrary<kWideFunctions.size()> kernel;
  const bool is_wide = kernel.Bind("KERNEL32.DLL", kWideFunctions);
  const ErrorMode no_prompts(SEM_FAILCRITICALERRORS);
  return is_wide ? ReadWideSpace(kernel.Get<WideFunction>(0), root) : ReadClusterSpace(root);
}

void ReadVolume(const char* root, LogicalDiskRecord& disk) {
  char label[256] = {};
  char file_system[256] = {};
  DWORD flags = 0;
  if (GetVolumeInformationA(root, label, sizeof label, nullptr, nullptr, &flags, file_system,
                            sizeof file_system) == 0) {
    return;
  }
  file_system[sizeof file_system - 1] = '\0';
  CopyText(disk.file_system_name, file_system);
  disk.file_system_flags = flags;
}

// A drive for removable media is not asked for its contents: there may be nothing in it.
void ReadRemovable(const ProbeContext& context, const char* root, LogicalDiskRecord& disk) {
  const char drive[] = {root[0], root[1], '\0'};
  const char* format = "";
  if (ReadFloppyFormat(context, drive, format) && format[0] != '\0')
    wsprintfA(disk.disk_type, "floppy, %s", format);
}

LogicalDiskRecord ReadDisk(const ProbeContext& context, const char* root) {
  LogicalDiskRecord disk = {};
  disk.letter = root[0];
  const UINT type = GetDriveTypeA(root);
  CopyText(disk.disk_type, DriveTypeText(type));
  if (type == DRIVE_REMOVABLE) {
    ReadRemovable(context, root, disk);
    return disk;
  }
  const DiskSpace space = ReadSpace(root);
  disk.total = space.total;
  disk.total_free = space.total_free;
  disk.available_free = space.available_free;
  ReadVolume(root, disk);
  return disk;
}

// --- Lines ---

void WriteBytes(ReportWriter& report, const char* field, std::uint64_t bytes) {
  char number[kUnsigned64Size];
  FormatUnsigned64(bytes, number);
  report.WriteFormatted("%-27s%-21s:  %s b\r\n", "", field, number);
}

void WriteContents(ItemRun& run, const LogicalDiskRecord& disk) {
  const ProfileSettings& settings = run.settings;
  ReportWriter& report = run.report;
  if (settings.file_system_type != 0)
    report.WriteFormatted(kWideTextFieldFormat, "", "File system name", disk.file_system_name);
  if (settings.file_system_flags != 0)
    report.WriteFormatted("%-27s%-21s:  0x%08X\r\n", "", "File system flags",
                          static_cast<unsigned>(disk.file_system_flags));
  if (settings.total_space != 0) WriteBytes(report, "Total space", disk.total);
  if (settings.free_space != 0) WriteBytes(report, "Total free space", disk.total_free);
  if (settings.available_free_space != 0)
    WriteBytes(report, "Available free space", disk.available_free);
}

// The first two letters are those of floppy drives, whatever is there.
bool IsFloppyLetter(char letter) {
  return letter == 'A' || letter == 'a' || letter == 'B' || letter == 'b';
}

}  // namespace

bool ListLogicalDisks(const ProbeContext& context, RecordArray& disks) {
  const HeapBuffer roots = ReadRoots();
  if (!roots.present()) return false;
  const char* const end = roots.data() + roots.size();
  for (const char* root = roots.data(); root < end && *root != '\0'; root += TextLength(root) + 1) {
    const LogicalDiskRecord disk = ReadDisk(context, root);
    disks.Append(&disk);
  }
  return disks.complete();
}

const char* DriveTypeText(std::uint32_t type) {
  return TextOfNumber(kDriveTypes, type, "unknown");
}

bool WriteLogicalDisks(ItemRun& run) {
  RecordArray disks;
  if (!disks.Create(sizeof(LogicalDiskRecord)) || !ListLogicalDisks(run.context, disks))
    return WriteFailedList(run.report, kListName);
  WriteList<LogicalDiskRecord>(
      run.report, kListName, disks,
      [&run](ReportWriter& report, const char* label, const LogicalDiskRecord& disk) {
        report.WriteFormatted("%-27s%-21s:  %c\r\n", label, "Letter", disk.letter);
        report.WriteFormatted(kWideTextFieldFormat, "", "Disk type", disk.disk_type);
        if (!IsFloppyLetter(disk.letter)) WriteContents(run, disk);
        report.WriteText(kLineEnd);
      });
  return true;
}

}  // namespace hostscope
