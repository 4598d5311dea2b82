// Going through a registry key and what lies below it, however deep.
#pragma once

#include <span>

#include "platform/win32.h"
#include "util/heap.h"

namespace hostscope {

// What every key of a walk is opened for: querying values and enumerating subkeys.
inline constexpr DWORD kWalkAccess = KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS;

enum class WalkReach {
  kValues,       // the key's own values
  kSubkeyNames,  // the names of its subkeys as well
  kSubtree,      // and all that lies below them
};

enum class WalkStep { kSubkey, kValue, kEnd };

// The subkeys of a key come first, each followed by all that lies below it, then the key's own
// values, everything in the system's order. A list of subkeys or of values ends at the first call
// that gives none, also at a name or at data longer than the key said before; a list that the key
// says is empty is not asked for. A key that says nothing about itself is empty; a subkey that does
// not open, that is a link back to a key above it, or for which there is no memory, is given by its
// name alone.
//
// The walk keeps one record per open level, and room for one name and one value's data.
class KeyWalk {
 public:
  // Of an open key, which stays the caller's. Levels count from `level` on.
  KeyWalk(HKEY key, WalkReach reach, unsigned level = 1);
  ~KeyWalk();
  KeyWalk(const KeyWalk&) = delete;
  KeyWalk& operator=(const KeyWalk&) = delete;

  // The next subkey or value; what the functions below say holds until the next call.
  WalkStep Next();

  // How deep the key lies that the subkey or value belongs to.
  unsigned level() const { return first_level_ + depth_ - 1; }
  // The subkey's or the value's name.
  const char* name() const { return name_.data(); }
  // The value. A zero follows its data.
  DWORD type() const { return type_; }
  std::span<const char> data() const { return {data_.data(), data_size_}; }

 private:
  // What a key says about itself: lengths in bytes, without terminators.
  struct Figures {
    DWORD subkeys = 0;
    DWORD values = 0;
    DWORD longest_subkey = 0;
    DWORD longest_value_name = 0;
    DWORD longest_data = 0;
    FILETIME written = {};  // Windows 95/98/Me have none
  };

  struct OpenKey {
    HKEY key = nullptr;
    Figures figures;
    DWORD next_subkey = 0;
    DWORD next_value = 0;
    bool subkeys_done = false;
    bool values_done = false;
  };

  static bool AskFigures(HKEY key, Figures& figures);
  OpenKey* Deepest();
  bool Enter(HKEY key, const Figures& figures);
  void EnterSubkey();
  bool LeadsBack(const Figures& figures);
  void Leave();
  bool ReadSubkey(OpenKey& open);
  bool ReadValue(OpenKey& open);

  const WalkReach reach_;
  const unsigned first_level_;
  HeapBuffer keys_;  // of OpenKey; the first is the caller's
  unsigned depth_ = 0;
  bool at_subkey_ = false;
  HeapBuffer name_;
  HeapBuffer data_;
  DWORD type_ = 0;
  DWORD data_size_ = 0;
};

}  // namespace hostscope
