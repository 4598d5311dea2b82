#include "probes/system/bios.h"

#include "util/subkeys.h"
#include "util/text.h"

namespace hostscope {
namespace {

// As Windows reads its own device tree: querying, enumerating, notification, reading of security.
constexpr DWORD kReadAccess = 0x20019;

struct BiosFacts {
  OwnedText version;
  OwnedText date;
};

// NT describes the BIOS in one place.
BiosFacts ReadNtBios() {
  constexpr char kSystem[] = "HARDWARE\\DESCRIPTION\\System";
  return {ReadRegistryValue(HKEY_LOCAL_MACHINE, kSystem, "SystemBiosVersion").AsText(),
          ReadRegistryValue(HKEY_LOCAL_MACHINE, kSystem, "SystemBiosDate").AsText()};
}

// The first subkey of the device that has a version.
BiosFacts ReadDeviceBios(const RegistryKey& device) {
  SubkeyNames instances(device);
  while (const char* const name = instances.Next()) {
    const RegistryKey instance = RegistryKey::Open(device.get(), name, kReadAccess);
    if (!instance.open()) continue;
    OwnedText version = ReadRegistryValue(instance.get(), "BIOSVersion").AsText();
    if (version.present()) {
      return {static_cast<OwnedText&&>(version),
              ReadRegistryValue(instance.get(), "BIOSDate").AsText()};
    }
  }
  return {};
}

// On Windows 95/98/Me the BIOS is one of the devices that no bus enumerates.
BiosFacts ReadWindows9xBios() {
  const RegistryKey root = RegistryKey::Open(HKEY_LOCAL_MACHINE, "Enum\\Root", kReadAccess);
  if (!root.open()) return {};
  SubkeyNames devices(root);
  while (const char* const name = devices.Next()) {
    const RegistryKey device = RegistryKey::Open(root.get(), name, kReadAccess);
    if (!device.open()) continue;
    BiosFacts facts = ReadDeviceBios(device);
    if (facts.version.present()) return facts;
  }
  return {};
}

}  // namespace

bool ReadBiosVersion(ProbeContext& context, std::span<char> text) {
  text.front() = '\0';
  const BiosFacts facts = context.is_nt() ? ReadNtBios() : ReadWindows9xBios();
  if (!facts.version.present()) return false;
  if (facts.date.present()) {
    wsprintfA(text.data(), "%s (%s)", facts.version.c_str(), facts.date.c_str());
    EndFormatted(text);
  } else {
    CopyText(text.data(), text.size(), facts.version.c_str());
  }
  return true;
}

}  // namespace hostscope
