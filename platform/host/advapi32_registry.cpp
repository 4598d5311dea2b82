#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>

#include "platform/host/advapi32.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/process.h"

namespace host {
namespace {

struct OpenKey : Object {
  OpenKey(std::shared_ptr<RegistryKey> opened, REGSAM access)
      : Object("key"), key(std::move(opened)), granted(access) {}

  std::shared_ptr<RegistryKey> key;
  REGSAM granted;
};

const LayerLibrary kLibrary({.name = "ADVAPI32.DLL", .loaded_at_start = true});

std::uintptr_t HandleValue(HKEY key) {
  return reinterpret_cast<std::uintptr_t>(key);
}

// The hives' own handles are 32 bits wide and may come with their sign extended.
std::optional<Hive> PredefinedHive(HKEY key) {
  struct Row {
    HKEY handle;
    Hive hive;
  };
  const Row rows[] = {
      {HKEY_CLASSES_ROOT, Hive::kClassesRoot},     {HKEY_CURRENT_USER, Hive::kCurrentUser},
      {HKEY_LOCAL_MACHINE, Hive::kLocalMachine},   {HKEY_USERS, Hive::kUsers},
      {HKEY_CURRENT_CONFIG, Hive::kCurrentConfig}, {HKEY_DYN_DATA, Hive::kDynData},
  };
  for (const Row& row : rows) {
    if (static_cast<DWORD>(HandleValue(key)) == HandleValue(row.handle)) return row.hive;
  }
  return std::nullopt;
}

// What every function but RegCloseKey does with the key it is given: ends with the process, takes
// the fault stated for it and finds the key, which must allow what is needed of it.
class KeyCall {
 public:
  KeyCall(const char* function, HKEY handle, REGSAM needed) : machine_(CurrentMachine()) {
    EndThreadIfProcessEnded();
    error_ = CallError(function);
    lock_ = std::unique_lock(machine_.registry.mutex());
    if (error_ == 0) error_ = FindKey(handle, needed);
  }

  // The code to answer, or 0.
  LONG error() const { return static_cast<LONG>(error_); }
  bool is_nt() const { return machine_.IsNt(); }
  Machine& machine() { return machine_; }
  const std::shared_ptr<RegistryKey>& key() const { return key_; }

 private:
  DWORD FindKey(HKEY handle, REGSAM needed) {
    if (const std::optional<Hive> hive = PredefinedHive(handle)) {
      const Registry& registry = machine_.registry;
      if (hive == Hive::kDynData && is_nt() && !registry.HasDynData()) return ERROR_INVALID_HANDLE;
      key_ = registry.Root(*hive);
      return 0;
    }
    const auto open = machine_.handles.FindAs<OpenKey>(HandleValue(handle));
    if (open == nullptr) return ERROR_INVALID_HANDLE;
    if (is_nt() && (open->granted & needed) != needed) return ERROR_ACCESS_DENIED;
    if (open->key->removed) return ERROR_KEY_DELETED;
    key_ = open->key;
    return 0;
  }

  Machine& machine_;
  std::unique_lock<std::recursive_mutex> lock_;
  DWORD error_ = 0;
  std::shared_ptr<RegistryKey> key_;
};

REGSAM GrantedAccess(REGSAM asked) {
  if ((asked & MAXIMUM_ALLOWED) != 0) return KEY_ALL_ACCESS;
  if ((asked & GENERIC_READ) != 0) asked |= KEY_READ;
  if ((asked & GENERIC_WRITE) != 0) asked |= KEY_WRITE;
  return asked;
}

// What an ordinary user of NT may not have of the machine's keys. MAXIMUM_ALLOWED is what he may.
bool WouldChange(REGSAM asked) {
  return (asked & MAXIMUM_ALLOWED) == 0 && (GrantedAccess(asked) & ~(KEY_READ | GENERIC_READ)) != 0;
}

// A path that begins with a backslash is refused; only NT takes one below HKEY_CLASSES_ROOT.
LONG CheckSubkeyPath(HKEY key, bool is_nt, std::string_view path) {
  if (!path.starts_with('\\')) return ERROR_SUCCESS;
  if (!is_nt) return ERROR_FILE_NOT_FOUND;
  const bool classes = PredefinedHive(key) == Hive::kClassesRoot;
  if (classes && !path.starts_with("\\\\")) return ERROR_SUCCESS;
  return ERROR_BAD_PATHNAME;
}

// Copies a name with its final zero. The size counts the zero before and does not count it after;
// it stays when the buffer is too small.
LONG GiveName(std::string_view name, LPSTR buffer, LPDWORD size) {
  if (name.size() >= *size) return ERROR_MORE_DATA;
  std::memcpy(buffer, name.data(), name.size());
  buffer[name.size()] = '\0';
  *size = static_cast<DWORD>(name.size());
  return ERROR_SUCCESS;
}

// Copies a value's data as far as it is asked for: a null buffer asks for the size alone.
LONG GiveData(const RegistryValue& value, bool is_nt, LPBYTE buffer, LPDWORD size) {
  if (size == nullptr) return ERROR_SUCCESS;
  const DWORD room = *size;
  const DWORD needed = static_cast<DWORD>(value.data.size());
  *size = needed;
  if (buffer == nullptr) return ERROR_SUCCESS;
  if (needed > room) return ERROR_MORE_DATA;
  std::memcpy(buffer, value.data.data(), needed);
  // NT adds a zero that the text lacks, where there is room, and does not count it.
  if (is_nt && IsRegistryText(value.type) && needed < room && needed != 0 &&
      value.data.back() != '\0') {
    buffer[needed] = 0;
  }
  return ERROR_SUCCESS;
}

void GiveNumber(LPDWORD target, std::size_t number) {
  if (target != nullptr) *target = static_cast<DWORD>(number);
}

// Classes of keys are not kept.
void GiveTimeAndNoClass(const RegistryKey& key, LPSTR class_name, LPDWORD class_size,
                        PFILETIME last_write) {
  if (class_name != nullptr && class_size != nullptr && *class_size != 0) *class_name = '\0';
  GiveNumber(class_size, 0);
  if (last_write == nullptr) return;
  *last_write = {static_cast<DWORD>(key.write_time), static_cast<DWORD>(key.write_time >> 32)};
}

LONG EnumerateKey(const KeyCall& call, DWORD index, LPSTR name, LPDWORD size) {
  const auto subkey = call.key()->subkeys.At(index, call.is_nt());
  if (subkey == nullptr) return ERROR_NO_MORE_ITEMS;
  return GiveName(VisibleName(subkey->name), name, size);
}

std::size_t LongestSubkey(const RegistryKey& key) {
  std::size_t longest = 0;
  for (std::size_t i = 0; const auto subkey = key.subkeys.At(i, false); ++i) {
    longest = std::max(longest, VisibleName(subkey->name).size());
  }
  return longest;
}

struct LongestValue {
  std::size_t name = 0;
  std::size_t data = 0;
};

LongestValue FindLongestValue(const RegistryKey& key, bool is_nt) {
  LongestValue longest;
  for (std::size_t i = 0; const auto value = key.values.At(i, false); ++i) {
    const std::size_t width = is_nt && IsRegistryText(value->type) ? 2 : 1;
    longest.name = std::max(longest.name, VisibleName(value->name).size());
    longest.data = std::max(longest.data, value->data.size() * width);
  }
  return longest;
}

}  // namespace
}  // namespace host

using host::KeyCall;

LONG WINAPI RegOpenKeyExA(HKEY key, LPCSTR subkey, DWORD options, REGSAM access, PHKEY result) {
  KeyCall call("RegOpenKeyExA", key, 0);
  if (call.error() != 0) return call.error();
  if (result == nullptr) return ERROR_INVALID_PARAMETER;
  const std::string_view path = subkey == nullptr ? "" : subkey;
  if (const LONG error = host::CheckSubkeyPath(key, call.is_nt(), path)) return error;
  const bool link_itself = (options & REG_OPTION_OPEN_LINK) != 0;
  const auto found = call.machine().registry.Open(call.key(), path, link_itself);
  if (found == nullptr) return ERROR_FILE_NOT_FOUND;
  if (found->open_error) return static_cast<LONG>(*found->open_error);
  if (call.is_nt() && host::WouldChange(access)) return ERROR_ACCESS_DENIED;
  found->last_access = access;
  const auto open = std::make_shared<host::OpenKey>(found, host::GrantedAccess(access));
  *result = reinterpret_cast<HKEY>(call.machine().handles.Open(open));
  return ERROR_SUCCESS;
}

LONG WINAPI RegCloseKey(HKEY key) {
  if (const DWORD error = host::CallError("RegCloseKey")) return static_cast<LONG>(error);
  if (host::PredefinedHive(key)) return ERROR_SUCCESS;
  host::HandleTable& handles = host::CurrentMachine().handles;
  if (handles.FindAs<host::OpenKey>(host::HandleValue(key)) == nullptr) return ERROR_INVALID_HANDLE;
  if (!handles.Close(host::HandleValue(key))) return ERROR_INVALID_HANDLE;
  return ERROR_SUCCESS;
}

LONG WINAPI RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                             LPDWORD size) {
  KeyCall call("RegQueryValueExA", key, KEY_QUERY_VALUE);
  if (call.error() != 0) return call.error();
  if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
  const host::RegistryValue* value = call.key()->values.Find(name == nullptr ? "" : name);
  if (value == nullptr) {
    // Windows 95/98/Me clear the type; NT leaves it.
    if (!call.is_nt()) host::GiveNumber(type, REG_NONE);
    return ERROR_FILE_NOT_FOUND;
  }
  host::GiveNumber(type, value->type);
  return host::GiveData(*value, call.is_nt(), data, size);
}

LONG WINAPI RegEnumKeyA(HKEY key, DWORD index, LPSTR name, DWORD size) {
  KeyCall call("RegEnumKeyA", key, KEY_ENUMERATE_SUB_KEYS);
  if (call.error() != 0) return call.error();
  if (name == nullptr) return ERROR_INVALID_PARAMETER;
  return host::EnumerateKey(call, index, name, &size);
}

LONG WINAPI RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD size, LPDWORD reserved,
                          LPSTR class_name, LPDWORD class_size, PFILETIME last_write) {
  KeyCall call("RegEnumKeyExA", key, KEY_ENUMERATE_SUB_KEYS);
  if (call.error() != 0) return call.error();
  if (name == nullptr || size == nullptr || reserved != nullptr ||
      (class_name != nullptr && class_size == nullptr)) {
    return ERROR_INVALID_PARAMETER;
  }
  const LONG error = host::EnumerateKey(call, index, name, size);
  if (error != ERROR_SUCCESS) return error;
  const auto subkey = call.key()->subkeys.At(index, call.is_nt());
  host::GiveTimeAndNoClass(*subkey, class_name, class_size, last_write);
  return ERROR_SUCCESS;
}

LONG WINAPI RegEnumValueA(HKEY key, DWORD index, LPSTR name, LPDWORD name_size, LPDWORD reserved,
                          LPDWORD type, LPBYTE data, LPDWORD data_size) {
  KeyCall call("RegEnumValueA", key, KEY_QUERY_VALUE);
  if (call.error() != 0) return call.error();
  if (name == nullptr || name_size == nullptr || reserved != nullptr ||
      (data != nullptr && data_size == nullptr)) {
    return ERROR_INVALID_PARAMETER;
  }
  const auto value = call.key()->values.At(index, false);
  if (value == nullptr) return ERROR_NO_MORE_ITEMS;
  host::GiveNumber(type, value->type);
  const LONG name_error = host::GiveName(host::VisibleName(value->name), name, name_size);
  const LONG data_error = host::GiveData(*value, call.is_nt(), data, data_size);
  return name_error != ERROR_SUCCESS ? name_error : data_error;
}

LONG WINAPI RegQueryInfoKeyA(HKEY key, LPSTR class_name, LPDWORD class_size, LPDWORD reserved,
                             LPDWORD subkeys, LPDWORD longest_subkey, LPDWORD longest_class,
                             LPDWORD values, LPDWORD longest_value_name, LPDWORD longest_data,
                             LPDWORD security_size, PFILETIME last_write) {
  KeyCall call("RegQueryInfoKeyA", key, KEY_QUERY_VALUE);
  if (call.error() != 0) return call.error();
  const bool no_class_size = class_name != nullptr && class_size == nullptr;
  if (reserved != nullptr || (no_class_size && call.is_nt())) return ERROR_INVALID_PARAMETER;
  const host::RegistryKey& found = *call.key();
  host::GiveNumber(subkeys, found.subkeys.size());
  host::GiveNumber(values, found.values.size());
  if (longest_subkey != nullptr) *longest_subkey = static_cast<DWORD>(host::LongestSubkey(found));
  if (longest_value_name != nullptr || longest_data != nullptr) {
    const host::LongestValue longest = host::FindLongestValue(found, call.is_nt());
    host::GiveNumber(longest_value_name, longest.name);
    host::GiveNumber(longest_data, longest.data);
  }
  host::GiveNumber(longest_class, 0);
  host::GiveNumber(security_size, 0);
  host::GiveTimeAndNoClass(found, class_name, class_size, last_write);
  return ERROR_SUCCESS;
}
