#include "probes/system/bios.h"

#include "util/subkeys.h"
#include "util/text.h"

namespace hostscope {
namespace {

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
  BiosFacts facts;
  ForEachSubkey(device, [&facts](const char*, const RegistryKey& instance) {
    facts.version = ReadRegistryValue(instance.get(), "BIOSVersion").AsText();
    if (!facts.version.present()) return true;
    facts.date = ReadRegistryValue(instance.get(), "BIOSDate").AsText();
    return false;
  });
  return facts;
}

// On Windows 95/98/Me the BIOS is one of the devices that no bus enumerates.
BiosFacts ReadWindows9xBios() {
  BiosFacts facts;
  const RegistryKey root = OpenMachineKey({"Enum\\Root"}, KEY_READ);
  if (!root.open()) return facts;
  ForEachSubkey(root, [&facts](const char*, const RegistryKey& device) {
    facts = ReadDeviceBios(device);
    return !facts.version.present();
  });
  return facts;
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
