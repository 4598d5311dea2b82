#include "scans/key_walk.h"

#include <algorithm>
#include <cstdint>

#include "util/registry.h"

namespace hostscope {
namespace {

// Gives the block room for the longest item and a zero; what it held may be lost. It grows in
// leaps, so that a tree of ever longer names costs few blocks.
bool HasRoom(HeapBuffer& block, DWORD longest) {
  if (longest >= INT32_MAX) return false;
  const std::size_t size = longest + 1;
  if (block.size() >= size) return true;
  const std::size_t leap = std::max(size, block.size() * 2);
  block.Release();
  block = HeapBuffer(leap);
  if (!block.present()) block = HeapBuffer(size);
  return block.present();
}

}  // namespace

KeyWalk::KeyWalk(HKEY key, WalkReach reach, unsigned level) : reach_(reach), first_level_(level) {
  Enter(key);
}

KeyWalk::~KeyWalk() {
  while (depth_ > 0)
    Leave();
}

WalkStep KeyWalk::Next() {
  if (at_subkey_ && reach_ == WalkReach::kSubtree) EnterSubkey();
  at_subkey_ = false;
  while (OpenKey* const open = Deepest()) {
    at_subkey_ = ReadSubkey(*open);
    if (at_subkey_) return WalkStep::kSubkey;
    if (ReadValue(*open)) return WalkStep::kValue;
    Leave();
  }
  return WalkStep::kEnd;
}

KeyWalk::OpenKey* KeyWalk::Deepest() {
  return depth_ == 0 ? nullptr : reinterpret_cast<OpenKey*>(keys_.data()) + depth_ - 1;
}

// False, and the key is none of the walk's, when it says nothing about itself.
bool KeyWalk::Enter(HKEY key) {
  OpenKey open = {.key = key};
  DWORD subkeys = 0;
  DWORD values = 0;
  if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subkeys, &open.longest_subkey, nullptr,
                       &values, &open.longest_value_name, &open.longest_data, nullptr,
                       nullptr) != ERROR_SUCCESS) {
    return false;
  }
  // Most keys of a tree have no subkeys or no values. Nothing that they get now would fit into the
  // room for nothing, and a call that says so costs as much as one that reads a value.
  open.subkeys_done = reach_ == WalkReach::kValues || subkeys == 0;
  open.values_done = values == 0;
  const std::size_t needed = (depth_ + 1) * sizeof(OpenKey);
  if (needed > keys_.size() && !keys_.Resize(needed * 2)) return false;
  ++depth_;
  *Deepest() = open;
  return true;
}

// A name that begins with a zero, as a key of NT may have, reads as an empty one; that would open
// the key itself again, and the walk would never end.
void KeyWalk::EnterSubkey() {
  if (name()[0] == '\0') return;
  HKEY key = nullptr;
  if (RegOpenKeyExA(Deepest()->key, name(), 0, kWalkAccess, &key) != ERROR_SUCCESS) return;
  if (!Enter(key)) RegCloseKey(key);
}

void KeyWalk::Leave() {
  if (depth_ > 1) RegCloseKey(Deepest()->key);
  --depth_;
}

bool KeyWalk::ReadSubkey(OpenKey& open) {
  if (open.subkeys_done) return false;
  open.subkeys_done = true;
  if (!HasRoom(name_, open.longest_subkey)) return false;
  DWORD length = open.longest_subkey + 1;
  if (RegEnumKeyExA(open.key, open.next_subkey, name_.data(), &length, nullptr, nullptr, nullptr,
                    nullptr) != ERROR_SUCCESS) {
    return false;
  }
  name_.data()[open.longest_subkey] = '\0';
  open.subkeys_done = false;
  ++open.next_subkey;
  return true;
}

bool KeyWalk::ReadValue(OpenKey& open) {
  if (open.values_done) return false;
  if (!HasRoom(name_, open.longest_value_name) || !HasRoom(data_, open.longest_data)) return false;
  DWORD length = open.longest_value_name + 1;
  DWORD size = open.longest_data;
  if (RegEnumValueA(open.key, open.next_value, name_.data(), &length, nullptr, &type_,
                    reinterpret_cast<LPBYTE>(data_.data()), &size) != ERROR_SUCCESS) {
    return false;
  }
  name_.data()[open.longest_value_name] = '\0';
  data_size_ = std::min(size, open.longest_data);
  data_.data()[data_size_] = '\0';
  ++open.next_value;
  return true;
}

}  // namespace hostscope
