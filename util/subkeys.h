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

}  // namespace hostscope
