#include "probes/devices/network_components.h"

#include "probes/devices/registry_roots.h"
#include "util/registry.h"
#include "util/subkeys.h"

namespace hostscope {
namespace {

constexpr std::int32_t kNoSuchClass = -1;

// False when the key has no such value, or it could not be appended.
bool AppendValue(const RegistryKey& key, const char* value_name, StringList& texts) {
  const OwnedText text = ReadRegistryValue(key.get(), value_name).AsText();
  return text.present() && texts.Append(text.c_str()) >= 0;
}

bool IsOfClass(const RegistryKey& key, const char* class_name) {
  const OwnedText its_class = ReadRegistryValue(key.get(), "Class").AsText();
  return its_class.present() && SameTextIgnoringCase(its_class.c_str(), class_name);
}

// On NT the components of a class lie under a key that is named as the class's key is.
OwnedText FindClassKeyName(const char* class_name) {
  OwnedText found;
  const RegistryKey classes = OpenMachineKey({kNtRoots.drivers}, KEY_READ);
  if (!classes.open()) return found;
  ForEachSubkey(classes, [&](const char* name, const RegistryKey& key) {
    if (!IsOfClass(key, class_name)) return true;
    found = DuplicateText(name);
    return false;
  });
  return found;
}

std::int32_t ListNtComponents(const char* class_name, StringList& descriptions) {
  const OwnedText class_key = FindClassKeyName(class_name);
  if (!class_key.present()) return kNoSuchClass;
  const RegistryKey components =
      OpenMachineKey({kNtRoots.network_components, class_key.c_str()}, KEY_READ);
  std::int32_t count = 0;
  if (!components.open()) return count;
  ForEachSubkey(components, [&](const char*, const RegistryKey& component) {
    count += AppendValue(component, "Description", descriptions) ? 1 : 0;
    return true;
  });
  return count;
}

// Whether this instance of a component is the one that the others are copies of.
bool IsMasterCopy(const RegistryKey& instance, const char* component, const char* name) {
  const OwnedText master = ReadRegistryValue(instance.get(), "MasterCopy").AsText();
  const OwnedText own = JoinKeyPath({kWindows9xRoots.network_components, component, name});
  return master.present() && own.present() && SameTextIgnoringCase(master.c_str(), own.c_str());
}

std::int32_t ListWindows9xComponents(const char* class_name, StringList& descriptions) {
  const RegistryKey components = OpenMachineKey({kWindows9xRoots.network_components}, KEY_READ);
  if (!components.open()) return kNoSuchClass;
  std::int32_t count = 0;
  ForEachSubkey(components, [&](const char* component_name, const RegistryKey& component) {
    ForEachSubkey(component, [&](const char* name, const RegistryKey& instance) {
      const bool listed =
          IsOfClass(instance, class_name) && IsMasterCopy(instance, component_name, name);
      if (listed && AppendValue(instance, "DeviceDesc", descriptions)) ++count;
      return true;
    });
    return true;
  });
  return count;
}

}  // namespace

bool IsNetworkComponentClass(const char* class_name) {
  return SameTextIgnoringCase(class_name, "NetClient") ||
         SameTextIgnoringCase(class_name, "NetService");
}

std::int32_t ListNetworkComponents(const ProbeContext& context, const char* class_name,
                                   StringList& descriptions) {
  return context.is_nt() ? ListNtComponents(class_name, descriptions)
                         : ListWindows9xComponents(class_name, descriptions);
}

}  // namespace hostscope
