// Enumerating the subkeys of a registry key.
#pragma once

#include "util/registry.h"

namespace hostscope {

// The names of an open key's subkeys, in enumeration order.
class SubkeyNames {
 public:
  explicit SubkeyNames(const RegistryKey& key);

  // The next name, valid until the next call; null at the end, and when the enumeration cannot go
  // on.
  const char* Next();

 private:
  const RegistryKey& key_;
  HeapBuffer name_;
  DWORD index_ = 0;
};

// Opens each subkey of the key for reading, in enumeration order, and hands its name and the open
// key to `visit`, until that answers false. A subkey that cannot be opened is passed over.
template <typename Visit>
void ForEachSubkey(const RegistryKey& key, Visit visit) {
  SubkeyNames names(key);
  while (const char* const name = names.Next()) {
    const RegistryKey subkey = RegistryKey::OpenAsWritten(key.get(), name, KEY_READ);
    if (subkey.open() && !visit(name, subkey)) return;
  }
}

}  // namespace hostscope
