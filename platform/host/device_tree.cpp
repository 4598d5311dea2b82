#include "platform/host/device_tree.h"

#include <charconv>
#include <functional>
#include <optional>
#include <unordered_set>

#include "platform/host/machine.h"

namespace host {
namespace {

constexpr char kNtDevices[] = "SYSTEM\\CurrentControlSet\\Enum";
constexpr char kNtClasses[] = "SYSTEM\\CurrentControlSet\\Control\\Class";
constexpr char kWindows9xDevices[] = "Enum";
constexpr char kWindows9xClasses[] = "System\\CurrentControlSet\\Services\\Class";
constexpr char kWindows9xPresent[] = "Config Manager\\Enum";

using KeyPointer = std::shared_ptr<RegistryKey>;
using InstanceIds = std::unordered_set<std::string, NoCaseHash, NoCaseEqual>;

KeyPointer Open(const Machine& machine, Hive hive, std::string_view path) {
  return machine.registry.Open(machine.registry.Root(hive), path, false);
}

// A null key has no subkeys.
void ForEachSubkey(const Machine& machine, const RegistryKey* key,
                   const std::function<void(const RegistryKey& subkey)>& visit) {
  if (key == nullptr) return;
  for (std::size_t i = 0; const KeyPointer subkey = key->subkeys.At(i, machine.IsNt()); ++i) {
    visit(*subkey);
  }
}

// Empty when there is no such value.
std::string Text(const RegistryKey& key, std::string_view name) {
  const RegistryValue* const value = key.values.Find(name);
  return value == nullptr ? std::string() : value->data.substr(0, value->data.find('\0'));
}

template <typename Number>
bool ReadHexadecimal(std::string_view digits, Number& number) {
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return error == std::errc() && end == digits.data() + digits.size();
}

// "{4D36E965-E325-11CE-BFC1-08002BE10318}", in any case.
std::optional<GUID> ParseGuid(std::string_view text) {
  GUID guid = {};
  const bool has_form = text.size() == 38 && text[0] == '{' && text[9] == '-' && text[14] == '-' &&
                        text[19] == '-' && text[24] == '-' && text[37] == '}';
  if (!has_form || !ReadHexadecimal(text.substr(1, 8), guid.Data1) ||
      !ReadHexadecimal(text.substr(10, 4), guid.Data2) ||
      !ReadHexadecimal(text.substr(15, 4), guid.Data3)) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < std::size(guid.Data4); ++i) {
    const std::size_t at = (i < 2 ? 20 : 21) + 2 * i;
    if (!ReadHexadecimal(text.substr(at, 2), guid.Data4[i])) return std::nullopt;
  }
  return guid;
}

// The published identifiers of classes that the registry of Windows 95/98/Me may know by name only.
struct PublishedClass {
  std::string_view name;
  std::string_view guid;
};
constexpr PublishedClass kPublishedClasses[] = {
    {"CDROM", "{4D36E965-E325-11CE-BFC1-08002BE10318}"},
    {"DiskDrive", "{4D36E967-E325-11CE-BFC1-08002BE10318}"},
    {"Display", "{4D36E968-E325-11CE-BFC1-08002BE10318}"},
    {"fdc", "{4D36E969-E325-11CE-BFC1-08002BE10318}"},
    {"hdc", "{4D36E96A-E325-11CE-BFC1-08002BE10318}"},
    {"Keyboard", "{4D36E96B-E325-11CE-BFC1-08002BE10318}"},
    {"MEDIA", "{4D36E96C-E325-11CE-BFC1-08002BE10318}"},
    {"Modem", "{4D36E96D-E325-11CE-BFC1-08002BE10318}"},
    {"Monitor", "{4D36E96E-E325-11CE-BFC1-08002BE10318}"},
    {"Mouse", "{4D36E96F-E325-11CE-BFC1-08002BE10318}"},
    {"Net", "{4D36E972-E325-11CE-BFC1-08002BE10318}"},
    {"Ports", "{4D36E978-E325-11CE-BFC1-08002BE10318}"},
    {"SCSIAdapter", "{4D36E97B-E325-11CE-BFC1-08002BE10318}"},
    {"USB", "{36FC9E60-C465-11CF-8056-444553540000}"},
};

std::vector<GUID> NtClassesNamed(const Machine& machine, std::string_view name) {
  std::vector<GUID> found;
  const KeyPointer classes = Open(machine, Hive::kLocalMachine, kNtClasses);
  ForEachSubkey(machine, classes.get(), [&](const RegistryKey& key) {
    const std::optional<GUID> guid = ParseGuid(key.name);
    if (guid && EqualNoCase(Text(key, "Class"), name)) found.push_back(*guid);
  });
  return found;
}

std::optional<GUID> Windows9xClassNamed(const Machine& machine, std::string_view name) {
  const KeyPointer classes = Open(machine, Hive::kLocalMachine, kWindows9xClasses);
  const KeyPointer key = classes == nullptr ? nullptr : classes->subkeys.Find(name);
  if (key != nullptr) {
    if (const std::optional<GUID> linked = ParseGuid(Text(*key, "Link"))) return linked;
  }
  for (const PublishedClass& row : kPublishedClasses) {
    if (EqualNoCase(row.name, name)) return ParseGuid(row.guid);
  }
  return std::nullopt;
}

std::optional<GUID> ClassOf(const Machine& machine, const RegistryKey& device) {
  const std::optional<GUID> guid = ParseGuid(Text(device, "ClassGUID"));
  if (guid || machine.IsNt()) return guid;
  return Windows9xClassNamed(machine, Text(device, "Class"));
}

// Nothing when the exports don't say which devices are present.
std::optional<InstanceIds> PresentOnWindows9x(const Machine& machine) {
  const KeyPointer present = Open(machine, Hive::kDynData, kWindows9xPresent);
  if (present == nullptr) return std::nullopt;
  InstanceIds ids;
  ForEachSubkey(machine, present.get(),
                [&](const RegistryKey& key) { ids.insert(Text(key, "HardWareKey")); });
  return ids;
}

std::function<bool(const std::string& id, const RegistryKey& device)> IsPresentOn(
    const Machine& machine) {
  if (machine.IsNt()) {
    // Made by the system for the devices that it has started, and gone when it goes down.
    return [](const std::string&, const RegistryKey& device) {
      return device.subkeys.Find("Control") != nullptr;
    };
  }
  return [ids = PresentOnWindows9x(machine)](const std::string& id, const RegistryKey&) {
    return !ids || ids->contains(id);
  };
}

}  // namespace

std::vector<GUID> DeviceClassesNamed(const Machine& machine, std::string_view name) {
  if (machine.IsNt()) return NtClassesNamed(machine, name);
  const std::optional<GUID> guid = Windows9xClassNamed(machine, name);
  return guid ? std::vector<GUID>{*guid} : std::vector<GUID>();
}

std::vector<std::string> PresentDevicesOfClass(const Machine& machine, const GUID& device_class) {
  std::vector<std::string> ids;
  const auto is_present = IsPresentOn(machine);
  const auto add = [&](const std::string& id, const RegistryKey& device) {
    if (ClassOf(machine, device) == device_class && is_present(id, device)) {
      ids.push_back(UpperCase(id));
    }
  };
  const KeyPointer devices =
      Open(machine, Hive::kLocalMachine, machine.IsNt() ? kNtDevices : kWindows9xDevices);
  // ENUMERATOR\DEVICE\INSTANCE
  const std::function<void(const RegistryKey*, const std::string&, int)> walk =
      [&](const RegistryKey* key, const std::string& prefix, int level) {
        ForEachSubkey(machine, key, [&](const RegistryKey& subkey) {
          const std::string id = prefix + std::string(VisibleName(subkey.name));
          level == 3 ? add(id, subkey) : walk(&subkey, id + "\\", level + 1);
        });
      };
  walk(devices.get(), "", 1);
  return ids;
}

}  // namespace host
