#include "probes/devices/old_nt_devices.h"

#include "platform/win32.h"
#include "probes/devices/device_scanner.h"
#include "util/file_version.h"
#include "util/registry.h"
#include "util/subkeys.h"
#include "util/windows_version.h"

namespace hostscope {
namespace {

constexpr char kSystemMidiDriver[] = "mmdrv.dll";

bool StartsWithSystemMidiDriver(const char* name) {
  char start[sizeof kSystemMidiDriver];
  CopyText(start, name);
  return SameTextIgnoringCase(start, kSystemMidiDriver);
}

// False when nothing in the registry describes the driver, or it could not be appended.
bool AppendMidiDriver(const char* name, RecordArray& records) {
  const OwnedText path =
      JoinKeyPath({"SYSTEM\\CurrentControlSet\\Control\\MediaResources\\MIDI", name});
  if (!path.present()) return false;
  const OwnedText driver = ReadRegistryValue(HKEY_LOCAL_MACHINE, path.c_str(), "Driver").AsText();
  if (!driver.present()) return false;
  const RegistryValue description = ReadRegistryValue(
      HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\drivers.desc",
      driver.c_str());
  if (!description.present()) return false;
  DeviceRecord record = {};
  description.CopyTextTo(record.name);
  ReadFileVersionItem(driver.c_str(), "CompanyName", record.manufacturer);
  return records.Append(&record) >= 0;
}

}  // namespace

bool IsNt351Or40() {
  OSVERSIONINFOA version;
  return ReadWindowsVersion(version) && version.dwPlatformId == VER_PLATFORM_WIN32_NT &&
         (version.dwMajorVersion == 4 ||
          (version.dwMajorVersion == 3 && version.dwMinorVersion == 51));
}

std::int32_t ListNtNetworkCards(RecordArray& records) {
  const RegistryKey cards =
      OpenMachineKey({"Software\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards"}, KEY_READ);
  std::int32_t count = 0;
  if (!cards.open()) return count;
  ForEachSubkey(cards, [&](const char*, const RegistryKey& card) {
    NetCardRecord record = {};
    ReadRegistryValue(card.get(), "Description").CopyTextTo(record.name);
    ReadRegistryValue(card.get(), "Manufacturer").CopyTextTo(record.manufacturer);
    if (records.Append(&record) >= 0) ++count;
    return true;
  });
  return count;
}

std::int32_t ListNtMidiDrivers(RecordArray& records) {
  OwnedText drivers =
      ReadRegistryValue(HKEY_CURRENT_USER,
                        "Software\\Microsoft\\Windows\\CurrentVersion\\Multimedia\\MIDIMap",
                        "DriverList")
          .AsText();
  std::int32_t count = 0;
  if (!drivers.present()) return count;
  char* list = drivers.data();
  while (const char* const name = TakeActiveMidiDriver(list)) {
    if (AppendMidiDriver(name, records)) ++count;
  }
  return count;
}

const char* TakeActiveMidiDriver(char*& list) {
  for (;;) {
    char* const entry = list;
    char* const comma = FindCharacter(list, ',');
    if (comma == nullptr) return nullptr;
    list = comma[1] == '\0' ? comma + 1 : comma + 2;
    *comma = '\0';
    char* const colon = FindCharacter(entry, ':');
    if (colon == nullptr || !SameTextIgnoringCase(colon + 1, "Active")) continue;
    *colon = '\0';
    if (!StartsWithSystemMidiDriver(entry)) return entry;
  }
}

}  // namespace hostscope
