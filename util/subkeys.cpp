#include "util/subkeys.h"

namespace hostscope {
namespace {

// The length of any key's name, terminator included; for a key that does not tell its own.
constexpr DWORD kLongestKeyName = 261;

DWORD NameSize(HKEY key) {
  DWORD longest = 0;
  const LONG error = RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, &longest, nullptr,
                                      nullptr, nullptr, nullptr, nullptr, nullptr);
  return error == ERROR_SUCCESS ? longest + 1 : kLongestKeyName;
}

}  // namespace

SubkeyNames::SubkeyNames(const RegistryKey& key) : key_(key), name_(NameSize(key.get())) {}

const char* SubkeyNames::Next() {
  if (!name_.present()) return nullptr;
  const LONG error =
      RegEnumKeyA(key_.get(), index_, name_.data(), static_cast<DWORD>(name_.size()));
  if (error != ERROR_SUCCESS) return nullptr;
  ++index_;
  return name_.data();
}

}  // namespace hostscope
