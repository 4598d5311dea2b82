// Reading single registry values.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "platform/win32.h"
#include "util/heap.h"
#include "util/text.h"

namespace hostscope {

// An open key, closed when the owner goes.
class RegistryKey {
 public:
  RegistryKey() = default;
  ~RegistryKey() { Close(); }
  RegistryKey(RegistryKey&& other) noexcept : key_(other.key_) { other.key_ = nullptr; }
  RegistryKey& operator=(RegistryKey&& other) noexcept;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  // Opens a subkey with the access mask; one leading backslash of the subkey is skipped. Not open
  // when the key is absent or refused.
  static RegistryKey Open(HKEY root, const char* subkey, DWORD access);
  // The same with the subkey as it stands; null is the root itself.
  static RegistryKey OpenAsWritten(HKEY root, const char* subkey, DWORD access);
  bool open() const { return key_ != nullptr; }
  HKEY get() const { return key_; }
  void Close();

 private:
  HKEY key_ = nullptr;
};

// The parts of a key's path with a backslash between each two, whatever is in them; none when there
// is no memory.
OwnedText JoinKeyPath(std::initializer_list<const char*> parts);

// Opens the key of the local machine that these parts are the path of, with the access mask. Not
// open when it is absent or refused, and when there is no memory.
RegistryKey OpenMachineKey(std::initializer_list<const char*> path, DWORD access);

// The data of one value: a copy of exactly its bytes with its type. Absent when the key or the
// value is absent, when it cannot be read, and when it holds no bytes.
struct RegistryValue {
  HeapBuffer data;
  DWORD type = 0;

  bool present() const { return data.present(); }
  // The first four bytes as a little-endian number; 0 when there are fewer.
  std::uint32_t FirstNumber() const;
  // The bytes up to their first zero as a text, whatever the type; a value that lacks its
  // terminator gets one. None when the value is absent or there is no memory.
  OwnedText AsText() const;
  // The same text copied into the field, cut to fit; a value that is absent leaves the field as it
  // was.
  void CopyTextTo(std::span<char> field) const;
};

// A value of a key that the caller has opened; a null name asks for the key's default value.
RegistryValue ReadRegistryValue(HKEY key, const char* value_name);

// A value of a subkey, which is opened for querying and closed again. One leading backslash of the
// subkey is skipped.
RegistryValue ReadRegistryValue(HKEY root, const char* subkey, const char* value_name);

}  // namespace hostscope
