#include "util/registry.h"

#include <algorithm>
#include <cstring>

namespace hostscope {

RegistryKey& RegistryKey::operator=(RegistryKey&& other) noexcept {
  if (this != &other) {
    Close();
    key_ = other.key_;
    other.key_ = nullptr;
  }
  return *this;
}

RegistryKey RegistryKey::Open(HKEY root, const char* subkey, DWORD access) {
  if (subkey != nullptr && subkey[0] == '\\') ++subkey;
  return OpenAsWritten(root, subkey, access);
}

RegistryKey RegistryKey::OpenAsWritten(HKEY root, const char* subkey, DWORD access) {
  RegistryKey result;
  HKEY opened = nullptr;
  if (RegOpenKeyExA(root, subkey, 0, access, &opened) == ERROR_SUCCESS) result.key_ = opened;
  return result;
}

void RegistryKey::Close() {
  if (key_ != nullptr) RegCloseKey(key_);
  key_ = nullptr;
}

OwnedText JoinKeyPath(std::initializer_list<const char*> parts) {
  std::size_t size = 0;
  for (const char* const part : parts)
    size += TextLength(part) + 1;
  OwnedText path = CopyOfText("", 0, size);
  char* end = path.data();
  if (end == nullptr) return path;
  for (const char* const* part = parts.begin(); part != parts.end(); ++part) {
    if (part != parts.begin()) *end++ = '\\';
    CopyText(end, size, *part);
    end += TextLength(end);
  }
  return path;
}

RegistryKey OpenMachineKey(std::initializer_list<const char*> path, DWORD access) {
  const OwnedText joined = JoinKeyPath(path);
  if (!joined.present()) return {};
  return RegistryKey::Open(HKEY_LOCAL_MACHINE, joined.c_str(), access);
}

std::uint32_t RegistryValue::FirstNumber() const {
  std::uint32_t number = 0;
  if (data.size() >= sizeof number) std::memcpy(&number, data.data(), sizeof number);
  return number;
}

OwnedText RegistryValue::AsText() const {
  if (!present()) return {};
  const void* const end = std::memchr(data.data(), 0, data.size());
  const std::size_t length =
      end == nullptr ? data.size()
                     : static_cast<std::size_t>(static_cast<const char*>(end) - data.data());
  return CopyOfText(data.data(), length);
}

void RegistryValue::CopyTextTo(std::span<char> field) const {
  // A value without its terminator ends with its data.
  if (present()) CopyText(field.data(), std::min(field.size(), data.size() + 1), data.data());
}

RegistryValue ReadRegistryValue(HKEY key, const char* value_name) {
  RegistryValue value;
  DWORD size = 0;
  if (RegQueryValueExA(key, value_name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS ||
      size == 0) {
    return value;
  }
  HeapBuffer data(size);
  if (!data.present()) return value;
  DWORD type = 0;
  DWORD read = size;
  // The value may have changed in between: one that grew does not fit and counts as absent, one
  // that shrank is taken with the bytes that came.
  if (RegQueryValueExA(key, value_name, nullptr, &type, reinterpret_cast<LPBYTE>(data.data()),
                       &read) != ERROR_SUCCESS ||
      read == 0) {
    return value;
  }
  if (read < size && !data.Resize(read)) return value;
  value.data = static_cast<HeapBuffer&&>(data);
  value.type = type;
  return value;
}

RegistryValue ReadRegistryValue(HKEY root, const char* subkey, const char* value_name) {
  const RegistryKey key = RegistryKey::Open(root, subkey, KEY_QUERY_VALUE);
  if (!key.open()) return {};
  return ReadRegistryValue(key.get(), value_name);
}

}  // namespace hostscope
