#include "scans/key_walk.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "util/text.h"

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

// A name of NT may read as one that opens another key: one that begins with a zero is empty and
// would open the key itself, and a character that the code page lacks may read as a backslash,
// which alone opens a root again. The walk would never end. Behind a byte above 0x7F a backslash
// may be the second half of a character, and the name a good one; at worst it opens a subkey.
bool LeadsElsewhere(const char* name) {
  if (name[0] == '\0') return true;
  for (const char* at = name; (at = FindCharacter(at, '\\')) != nullptr; ++at) {
    if (at == name || static_cast<unsigned char>(at[-1]) < 0x80) return true;
  }
  return false;
}

}  // namespace

KeyWalk::KeyWalk(HKEY key, WalkReach reach, unsigned level) : reach_(reach), first_level_(level) {
  Figures figures;
  if (AskFigures(key, figures)) Enter(key, figures);
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

bool KeyWalk::AskFigures(HKEY key, Figures& figures) {
  return RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &figures.subkeys, &figures.longest_subkey,
                          nullptr, &figures.values, &figures.longest_value_name,
                          &figures.longest_data, nullptr, &figures.written) == ERROR_SUCCESS;
}

// False, and the key is none of the walk's, when there is no memory for it.
bool KeyWalk::Enter(HKEY key, const Figures& figures) {
  const std::size_t needed = (depth_ + 1) * sizeof(OpenKey);
  if (needed > keys_.size() && !keys_.Resize(needed * 2)) return false;
  ++depth_;
  // Most keys of a tree have no subkeys or no values. Nothing that they get now would fit into the
  // room for nothing, and a call that says so costs as much as one that reads a value.
  *Deepest() = {.key = key,
                .figures = figures,
                .subkeys_done = reach_ == WalkReach::kValues || figures.subkeys == 0,
                .values_done = figures.values == 0};
  return true;
}

void KeyWalk::EnterSubkey() {
  if (LeadsElsewhere(name())) return;
  HKEY key = nullptr;
  if (RegOpenKeyExA(Deepest()->key, name(), 0, kWalkAccess, &key) != ERROR_SUCCESS) return;
  Figures figures;
  if (!AskFigures(key, figures) || LeadsBack(figures) || !Enter(key, figures)) RegCloseKey(key);
}

// Whether the subkey, which says this about itself, is a link to an open key. Links look like the
// keys that they lead to; only one that looks like an open key is asked whether it is a link. An
// ordinary key may well look like one above it, and so may, behind a link, the key that the walk
// began with: a way round always ends at its link.
bool KeyWalk::LeadsBack(const Figures& figures) {
  if (figures.subkeys == 0) return false;
  const OpenKey* const first = reinterpret_cast<const OpenKey*>(keys_.data());
  if (std::none_of(first, first + depth_, [&figures](const OpenKey& open) {
        return std::memcmp(&open.figures, &figures, sizeof figures) == 0;
      })) {
    return false;
  }
  HKEY link = nullptr;
  const LONG error =
      RegOpenKeyExA(Deepest()->key, name(), REG_OPTION_OPEN_LINK, KEY_QUERY_VALUE, &link);
  // What it leads to may be read and it may not: then they are two. Systems without links may
  // refuse the option in other words.
  if (error != ERROR_SUCCESS) return error == ERROR_ACCESS_DENIED;
  DWORD type = REG_NONE;
  const bool is_link = RegQueryValueExA(link, "SymbolicLinkValue", nullptr, &type, nullptr,
                                        nullptr) == ERROR_SUCCESS &&
                       type == REG_LINK;
  RegCloseKey(link);
  return is_link;
}

void KeyWalk::Leave() {
  if (depth_ > 1) RegCloseKey(Deepest()->key);
  --depth_;
}

bool KeyWalk::ReadSubkey(OpenKey& open) {
  if (open.subkeys_done) return false;
  open.subkeys_done = true;
  if (!HasRoom(name_, open.figures.longest_subkey)) return false;
  DWORD length = open.figures.longest_subkey + 1;
  if (RegEnumKeyExA(open.key, open.next_subkey, name_.data(), &length, nullptr, nullptr, nullptr,
                    nullptr) != ERROR_SUCCESS) {
    return false;
  }
  name_.data()[open.figures.longest_subkey] = '\0';
  open.subkeys_done = false;
  ++open.next_subkey;
  return true;
}

bool KeyWalk::ReadValue(OpenKey& open) {
  if (open.values_done) return false;
  if (!HasRoom(name_, open.figures.longest_value_name) ||
      !HasRoom(data_, open.figures.longest_data))
    return false;
  DWORD length = open.figures.longest_value_name + 1;
  DWORD size = open.figures.longest_data;
  if (RegEnumValueA(open.key, open.next_value, name_.data(), &length, nullptr, &type_,
                    reinterpret_cast<LPBYTE>(data_.data()), &size) != ERROR_SUCCESS) {
    return false;
  }
  name_.data()[open.figures.longest_value_name] = '\0';
  data_size_ = std::min(size, open.figures.longest_data);
  data_.data()[data_size_] = '\0';
  ++open.next_value;
  return true;
}

}  // namespace hostscope
