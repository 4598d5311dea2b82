#pragma once

#include "report/probe_context.h"

namespace hostscope {

// Keys below HKEY_LOCAL_MACHINE under which the two families keep the same things.
struct RegistryRoots {
  const char* devices;             // a key per device, named by its instance id
  const char* drivers;             // a key per device class, with one per driver in it
  const char* network_components;  // clients, services, protocols
};

inline constexpr RegistryRoots kNtRoots = {"SYSTEM\\CurrentControlSet\\Enum",
                                           "SYSTEM\\CurrentControlSet\\Control\\Class",
                                           "SYSTEM\\CurrentControlSet\\Control\\Network"};
inline constexpr RegistryRoots kWindows9xRoots = {
    "Enum", "System\\CurrentControlSet\\Services\\Class", "Enum\\Network"};

inline const RegistryRoots& RootsOf(const ProbeContext& context) {
  return context.is_nt() ? kNtRoots : kWindows9xRoots;
}

}  // namespace hostscope
