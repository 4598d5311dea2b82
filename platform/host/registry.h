// The registry of a described machine: a tree of keys and values in memory.
//
// Names and texts are in the machine's code page; case is kept and does not count. A name taken
// from a 16-bit export may hold characters that the code page does not have: it is kept as the text
// that 8-bit functions see ("?" for each of them), a zero and the name in letters. What follows the
// zero keeps such names apart and keeps them from being found by name, as on the real system.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host/code_page.h"
#include "platform/host/windows_types.h"

namespace host {

// Types of values.
inline constexpr DWORD kRegistryNone = 0;
inline constexpr DWORD kRegistryText = 1;
inline constexpr DWORD kRegistryExpandText = 2;
inline constexpr DWORD kRegistryBinary = 3;
inline constexpr DWORD kRegistryDword = 4;
inline constexpr DWORD kRegistryLink = 6;
inline constexpr DWORD kRegistryMultiText = 7;

// True for the types whose data NT keeps as 16-bit text.
constexpr bool IsRegistryText(DWORD type) {
  return type == kRegistryText || type == kRegistryExpandText || type == kRegistryMultiText;
}

struct RegistryKey;

struct RegistryValue {
  RegistryValue(std::string value_name, DWORD value_type, std::string value_data)
      : name(std::move(value_name)), type(value_type), data(std::move(value_data)) {}

  std::string name;  // empty: the key's default value
  DWORD type;
  std::string data;  // bytes; of text types in the code page, with the final zeros they have
};

// The subkeys or the values of one key. Finding by name takes no longer the more there are. A
// registry has hundreds of thousands of keys, most with one value or none, so that what few items
// do not need is made for many only.
//
// Slot holds one item, which has a member `name`, and is empty where one was removed. Reference is
// what is handed out: a key is shared with whoever has it open, a value stays where it is until
// another one is added or removed.
template <typename Slot, typename Reference>
class NamedItems {
 public:
  std::size_t size() const { return slots_.size() - (index_ ? index_->removed : 0); }
  // None when there is no item of that name.
  Reference Find(std::string_view name) const;
  // The same for changing the item; its name must stay.
  Slot* FindSlot(std::string_view name);
  // The name must be new.
  Slot& Add(Slot item);
  // The removed item, or none.
  Slot Remove(std::string_view name);
  // The n-th item in the order of adding or, when sorted, of names. None beyond the last.
  Reference At(std::size_t index, bool sorted) const;
  // All of them in the order of adding; takes them away when the key goes.
  std::vector<Slot> TakeAll();

 private:
  static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);
  static constexpr std::size_t kFewItems = 8;  // up to here they are searched one by one

  struct Index {
    std::size_t removed = 0;
    // By hashes, in steps of one from a name's own place: the number of its slot and one more. Zero
    // ends the search. Empty while there are few items.
    std::vector<std::uint32_t> places;
    // Slots in the order last asked for; empty when it must be worked out anew.
    std::vector<std::uint32_t> order;
    bool order_is_sorted = false;
  };

  static Reference Refer(const Slot& slot);
  std::size_t Number(std::string_view name) const;
  Index& MakeIndex() const;
  void PutInPlace(std::size_t number);
  void PutAllInPlaces();
  void WorkOutOrder(bool sorted) const;

  std::vector<Slot> slots_;
  mutable std::unique_ptr<Index> index_;
};

struct RegistryKey {
  explicit RegistryKey(std::string key_name) : name(std::move(key_name)) {}
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  // Adds the value, or gives the one of that name new contents; it then keeps its place.
  void SetValue(std::string_view value_name, DWORD type, std::string data);
  // The subkey of that name, made when there is none.
  RegistryKey& MakeSubkey(std::string_view subkey_name);

  std::string name;
  NamedItems<std::shared_ptr<RegistryKey>, std::shared_ptr<RegistryKey>> subkeys;
  NamedItems<std::optional<RegistryValue>, const RegistryValue*> values;
  std::uint64_t write_time = 0;     // UTC, as a FILETIME
  std::optional<DWORD> open_error;  // opening the key fails with this
  DWORD last_access = 0;            // the mask with which it was last opened
  bool removed = false;             // no longer in the tree, though a handle may still hold it
  bool is_link = false;             // to the key that value SymbolicLinkValue names, with its hive
};

// What 8-bit functions see of a name.
std::string_view VisibleName(std::string_view name);

enum class Hive { kClassesRoot, kCurrentUser, kLocalMachine, kUsers, kCurrentConfig, kDynData };
// By its full name ("HKEY_LOCAL_MACHINE") or its usual short one ("HKLM", "HKDD"), case ignored.
std::optional<Hive> HiveByName(std::string_view name);

// Paths begin with a hive: "HKLM\Software\Example". Empty parts of a path are skipped. HKCR is
// HKLM\Software\Classes and HKCU is the current user's key under HKU.
class Registry {
 public:
  Registry();

  // Which key under HKU is HKCU; ".DEFAULT" until it is stated, as on Windows 95/98/Me without user
  // profiles. To be called before anything is put under HKCU.
  void SetCurrentUser(std::string_view key_under_users);

  // A path that names no hive ends the process with a message: it is a fault of the test.
  void SetValue(std::string_view path, std::string_view name, DWORD type, std::string_view data);
  void SetText(std::string_view path, std::string_view name, std::string_view text);
  void SetExpandText(std::string_view path, std::string_view name, std::string_view text);
  void SetDword(std::string_view path, std::string_view name, DWORD number);
  // Makes the key, empty when it is new.
  void MakeKey(std::string_view path);
  // The key is a link from now on: who opens it, or a key below it, gets the target or a key below
  // that. The target need not be there.
  void MakeLink(std::string_view path, std::string_view target);
  void SetWriteTime(std::string_view path, std::uint64_t time);
  // The key is made when needed. Opening it fails; keys below it open, as on NT.
  void DenyAccess(std::string_view path, DWORD error = ERROR_ACCESS_DENIED);
  // The key with all below it; false when there is none. A hive itself can't be removed.
  bool RemoveKey(std::string_view path);
  bool RemoveValue(std::string_view path, std::string_view name);

  // For the layer. Whoever reads or changes keys while another thread may do so holds the mutex;
  // the functions above take it themselves.
  std::recursive_mutex& mutex() const { return mutex_; }
  // An empty key when nothing was put into the hive yet; Root never changes the registry.
  std::shared_ptr<RegistryKey> Root(Hive hive) const;
  RegistryKey& MakeRoot(Hive hive);
  // Whether anything was put into HKEY_DYN_DATA, a hive that NT does not have.
  bool HasDynData() const;
  // None when there is no such key. An empty path is the key itself.
  static std::shared_ptr<RegistryKey> FindBelow(std::shared_ptr<RegistryKey> key,
                                                std::string_view path);
  // The same with links followed, also one that the path ends at unless it is asked for itself.
  // None for links that lead to each other, too.
  std::shared_ptr<RegistryKey> Open(std::shared_ptr<RegistryKey> key, std::string_view path,
                                    bool last_link_itself) const;
  static RegistryKey& MakeBelow(RegistryKey& key, std::string_view path);
  // False when there is no such key below, or the path is empty.
  static bool RemoveBelow(RegistryKey& key, std::string_view path);

 private:
  // Where a hive lies: HKCR and HKCU are views on other hives.
  struct Place {
    std::shared_ptr<RegistryKey> tree;
    std::string_view path;
  };
  Place PlaceOf(Hive hive) const;
  static Hive HiveOfPath(std::string_view& path);
  RegistryKey& MakePath(std::string_view path);
  std::shared_ptr<RegistryKey> Follow(std::shared_ptr<RegistryKey> key, std::string_view path,
                                      bool last_link_itself, unsigned& links_left) const;

  mutable std::recursive_mutex mutex_;
  std::shared_ptr<RegistryKey> local_machine_;
  std::shared_ptr<RegistryKey> users_;
  std::shared_ptr<RegistryKey> current_config_;
  std::shared_ptr<RegistryKey> dyn_data_;
  std::string current_user_ = ".DEFAULT";
};

}  // namespace host
