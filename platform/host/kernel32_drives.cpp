// Drive letters and what is in the drives.
#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

using namespace host;

namespace {

// The drive of a root, "C:\"; none for any other text.
std::optional<Drive> DriveOf(LPCSTR root) {
  const std::string_view text = root == nullptr ? "" : root;
  if (text.size() != 3 || text[1] != ':' || text[2] != '\\') return std::nullopt;
  const std::map<char, Drive> letters = DriveLetters(CurrentMachine());
  const auto found = letters.find(static_cast<char>(text[0] & ~0x20));
  return found == letters.end() ? std::nullopt : std::optional(found->second);
}

// What is in the drive, or none and the error.
std::optional<Volume> VolumeOf(LPCSTR root) {
  const std::optional<Drive> drive = DriveOf(root);
  if (!drive) SetLastError(ERROR_PATH_NOT_FOUND);
  if (drive && !drive->volume) SetLastError(ERROR_NOT_READY);
  return drive ? drive->volume : std::nullopt;
}

DWORD Saturated(std::uint64_t number) {
  constexpr std::uint64_t kMost = std::numeric_limits<DWORD>::max();
  return static_cast<DWORD>(std::min(number, kMost));
}

}  // namespace

DWORD WINAPI GetLogicalDriveStringsA(DWORD size, LPSTR buffer) {
  if (CallFails("GetLogicalDriveStringsA")) return 0;
  std::string roots;
  for (const auto& [letter, drive] : DriveLetters(CurrentMachine()))
    roots.append({letter, ':', '\\', '\0'});
  const auto length = static_cast<DWORD>(roots.size());
  if (size <= length) return length + 1;
  std::memcpy(buffer, roots.c_str(), roots.size() + 1);
  return length;
}

UINT WINAPI GetDriveTypeA(LPCSTR root) {
  if (CallFails("GetDriveTypeA")) return DRIVE_UNKNOWN;
  const std::optional<Drive> drive = DriveOf(root);
  return drive ? drive->type : DRIVE_NO_ROOT_DIR;
}

BOOL WINAPI GetDiskFreeSpaceA(LPCSTR root, LPDWORD sectors_per_cluster, LPDWORD bytes_per_sector,
                              LPDWORD free_clusters, LPDWORD clusters) {
  if (EndableCallFails("GetDiskFreeSpaceA")) return FALSE;
  const std::optional<Volume> volume = VolumeOf(root);
  if (!volume) return FALSE;
  *sectors_per_cluster = volume->sectors_per_cluster;
  *bytes_per_sector = volume->bytes_per_sector;
  // Those that the user may fill.
  *free_clusters = Saturated(volume->available);
  *clusters = Saturated(volume->total);
  return TRUE;
}

BOOL WINAPI GetDiskFreeSpaceExA(LPCSTR root, ULARGE_INTEGER* available, ULARGE_INTEGER* total,
                                ULARGE_INTEGER* total_free) {
  if (EndableCallFails("GetDiskFreeSpaceExA")) return FALSE;
  const std::optional<Volume> volume = VolumeOf(root);
  if (!volume) return FALSE;
  const std::uint64_t cluster =
      std::uint64_t{volume->sectors_per_cluster} * volume->bytes_per_sector;
  available->QuadPart = cluster * volume->available;
  total->QuadPart = cluster * volume->total;
  total_free->QuadPart = cluster * volume->free;
  return TRUE;
}

BOOL WINAPI GetVolumeInformationA(LPCSTR root, LPSTR label, DWORD label_size, LPDWORD, LPDWORD,
                                  LPDWORD flags, LPSTR file_system, DWORD file_system_size) {
  if (EndableCallFails("GetVolumeInformationA")) return FALSE;
  const std::optional<Volume> volume = VolumeOf(root);
  if (!volume) return FALSE;
  if (volume->file_system.size() >= file_system_size) {
    SetLastError(ERROR_FILENAME_EXCED_RANGE);
    return FALSE;
  }
  if (label_size != 0) *label = '\0';
  *flags = volume->flags;
  std::memcpy(file_system, volume->file_system.c_str(), volume->file_system.size() + 1);
  return TRUE;
}
