#include "platform/host/registry.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace host {

template <typename Item>
std::size_t NamedItems<Item>::Slot(std::string_view name) const {
  if (!slots_.empty()) {
    const auto found = slots_.find(name);
    return found == slots_.end() ? kNotFound : found->second;
  }
  for (std::size_t slot = 0; slot < items_.size(); ++slot) {
    if (items_[slot] && EqualNoCase(items_[slot]->name, name)) return slot;
  }
  return kNotFound;
}

template <typename Item>
std::shared_ptr<Item> NamedItems<Item>::FindShared(std::string_view name) const {
  const std::size_t slot = Slot(name);
  return slot == kNotFound ? nullptr : items_[slot];
}

template <typename Item>
Item* NamedItems<Item>::Find(std::string_view name) const {
  const std::size_t slot = Slot(name);
  return slot == kNotFound ? nullptr : items_[slot].get();
}

template <typename Item>
Item& NamedItems<Item>::Add(std::shared_ptr<Item> item) {
  items_.push_back(std::move(item));
  order_.clear();
  if (!slots_.empty()) {
    slots_.emplace(items_.back()->name, items_.size() - 1);
  } else if (items_.size() > kFewItems) {
    for (std::size_t slot = 0; slot < items_.size(); ++slot) {
      if (items_[slot]) slots_.emplace(items_[slot]->name, slot);
    }
  }
  return *items_.back();
}

template <typename Item>
std::shared_ptr<Item> NamedItems<Item>::Remove(std::string_view name) {
  const std::size_t slot = Slot(name);
  if (slot == kNotFound) return nullptr;
  slots_.erase(items_[slot]->name);
  ++removed_;
  order_.clear();
  std::shared_ptr<Item> item = std::move(items_[slot]);
  items_[slot] = nullptr;
  if (removed_ == items_.size()) {
    items_.clear();
    slots_.clear();
    removed_ = 0;
  }
  return item;
}

template <typename Item>
std::shared_ptr<Item> NamedItems<Item>::At(std::size_t index, bool sorted) const {
  if (index >= size()) return nullptr;
  if (!sorted && removed_ == 0) return items_[index];
  if (order_.empty() || order_is_sorted_ != sorted) {
    order_.clear();
    for (std::size_t slot = 0; slot < items_.size(); ++slot) {
      if (items_[slot]) order_.push_back(slot);
    }
    if (sorted) {
      std::stable_sort(order_.begin(), order_.end(), [this](std::size_t a, std::size_t b) {
        return NoCaseLess()(items_[a]->name, items_[b]->name);
      });
    }
    order_is_sorted_ = sorted;
  }
  return items_[order_[index]];
}

template <typename Item>
std::vector<std::shared_ptr<Item>> NamedItems<Item>::TakeAll() {
  std::vector<std::shared_ptr<Item>> all = std::move(items_);
  std::erase(all, nullptr);
  *this = NamedItems();
  return all;
}

template class NamedItems<RegistryKey>;
template class NamedItems<RegistryValue>;

// One by one instead of each key ending its subkeys: a tree may be deeper than the stack.
RegistryKey::~RegistryKey() {
  std::vector<std::shared_ptr<RegistryKey>> ending = subkeys.TakeAll();
  while (!ending.empty()) {
    const std::shared_ptr<RegistryKey> key = std::move(ending.back());
    ending.pop_back();
    if (key.use_count() > 1) continue;
    for (std::shared_ptr<RegistryKey>& subkey : key->subkeys.TakeAll()) {
      ending.push_back(std::move(subkey));
    }
  }
}

void RegistryKey::SetValue(std::string_view value_name, DWORD type, std::string data) {
  if (RegistryValue* value = values.Find(value_name)) {
    value->type = type;
    value->data = std::move(data);
  } else {
    values.Add(std::make_shared<RegistryValue>(std::string(value_name), type, std::move(data)));
  }
}

RegistryKey& RegistryKey::MakeSubkey(std::string_view subkey_name) {
  if (RegistryKey* subkey = subkeys.Find(subkey_name)) return *subkey;
  return subkeys.Add(std::make_shared<RegistryKey>(std::string(subkey_name)));
}

std::string_view VisibleName(std::string_view name) {
  return name.substr(0, name.find('\0'));
}

namespace {

struct HiveName {
  std::string_view full;
  std::string_view abbreviation;
  Hive hive;
};
constexpr std::array<HiveName, 6> kHiveNames = {{
    {"HKEY_CLASSES_ROOT", "HKCR", Hive::kClassesRoot},
    {"HKEY_CURRENT_USER", "HKCU", Hive::kCurrentUser},
    {"HKEY_LOCAL_MACHINE", "HKLM", Hive::kLocalMachine},
    {"HKEY_USERS", "HKU", Hive::kUsers},
    {"HKEY_CURRENT_CONFIG", "HKCC", Hive::kCurrentConfig},
    {"HKEY_DYN_DATA", "HKDD", Hive::kDynData},
}};

// The part of the path up to the next backslash, taken off its front with that backslash.
std::string_view TakePart(std::string_view& path) {
  const std::size_t end = path.find('\\');
  const std::string_view part = path.substr(0, end);
  path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  return part;
}

void MarkRemoved(RegistryKey& top) {
  std::vector<RegistryKey*> marking = {&top};
  while (!marking.empty()) {
    RegistryKey& key = *marking.back();
    marking.pop_back();
    key.removed = true;
    for (std::size_t i = 0; const auto subkey = key.subkeys.At(i, false); ++i) {
      marking.push_back(subkey.get());
    }
  }
}

}  // namespace

std::optional<Hive> HiveByName(std::string_view name) {
  for (const HiveName& row : kHiveNames) {
    if (EqualNoCase(name, row.full) || EqualNoCase(name, row.abbreviation)) return row.hive;
  }
  return std::nullopt;
}

Registry::Registry()
    : local_machine_(std::make_shared<RegistryKey>("HKEY_LOCAL_MACHINE")),
      users_(std::make_shared<RegistryKey>("HKEY_USERS")),
      current_config_(std::make_shared<RegistryKey>("HKEY_CURRENT_CONFIG")),
      dyn_data_(std::make_shared<RegistryKey>("HKEY_DYN_DATA")) {}

void Registry::SetCurrentUser(std::string_view key_under_users) {
  const std::lock_guard lock(mutex_);
  current_user_ = key_under_users;
}

void Registry::SetValue(std::string_view path, std::string_view name, DWORD type,
                        std::string_view data) {
  const std::lock_guard lock(mutex_);
  MakePath(path).SetValue(name, type, std::string(data));
}

void Registry::SetText(std::string_view path, std::string_view name, std::string_view text) {
  SetValue(path, name, kRegistryText, std::string(text) + '\0');
}

void Registry::SetExpandText(std::string_view path, std::string_view name, std::string_view text) {
  SetValue(path, name, kRegistryExpandText, std::string(text) + '\0');
}

void Registry::SetDword(std::string_view path, std::string_view name, DWORD number) {
  std::string data;
  for (unsigned shift = 0; shift < 32; shift += 8)
    data += static_cast<char>(number >> shift);
  SetValue(path, name, kRegistryDword, data);
}

void Registry::MakeKey(std::string_view path) {
  const std::lock_guard lock(mutex_);
  MakePath(path);
}

void Registry::MakeLink(std::string_view path, std::string_view target) {
  const std::lock_guard lock(mutex_);
  RegistryKey& link = MakePath(path);
  link.link_target = target;
  link.SetValue("SymbolicLinkValue", kRegistryLink, std::string(target));
}

void Registry::SetWriteTime(std::string_view path, std::uint64_t time) {
  const std::lock_guard lock(mutex_);
  MakePath(path).write_time = time;
}

void Registry::DenyAccess(std::string_view path, DWORD error) {
  const std::lock_guard lock(mutex_);
  MakePath(path).open_error = error;
}

bool Registry::RemoveKey(std::string_view path) {
  const std::lock_guard lock(mutex_);
  const std::shared_ptr<RegistryKey> root = Root(HiveOfPath(path));
  return RemoveBelow(*root, path);
}

bool Registry::RemoveValue(std::string_view path, std::string_view name) {
  const std::lock_guard lock(mutex_);
  const std::shared_ptr<RegistryKey> root = Root(HiveOfPath(path));
  const std::shared_ptr<RegistryKey> key = FindBelow(root, path);
  return key != nullptr && key->values.Remove(name) != nullptr;
}

std::shared_ptr<RegistryKey> Registry::Root(Hive hive) const {
  const Place place = PlaceOf(hive);
  std::shared_ptr<RegistryKey> key = FindBelow(place.tree, place.path);
  return key != nullptr ? key : std::make_shared<RegistryKey>("");
}

RegistryKey& Registry::MakeRoot(Hive hive) {
  const Place place = PlaceOf(hive);
  return MakeBelow(*place.tree, place.path);
}

bool Registry::HasDynData() const {
  return dyn_data_->subkeys.size() != 0 || dyn_data_->values.size() != 0;
}

std::shared_ptr<RegistryKey> Registry::FindBelow(std::shared_ptr<RegistryKey> key,
                                                 std::string_view path) {
  while (key != nullptr && !path.empty()) {
    const std::string_view part = TakePart(path);
    if (!part.empty()) key = key->subkeys.FindShared(part);
  }
  return key;
}

std::shared_ptr<RegistryKey> Registry::Open(std::shared_ptr<RegistryKey> key, std::string_view path,
                                            bool last_link_itself) const {
  unsigned links_left = 32;
  return Follow(std::move(key), path, last_link_itself, links_left);
}

std::shared_ptr<RegistryKey> Registry::Follow(std::shared_ptr<RegistryKey> key,
                                              std::string_view path, bool last_link_itself,
                                              unsigned& links_left) const {
  while (key != nullptr && !path.empty()) {
    const std::string_view part = TakePart(path);
    if (part.empty()) continue;
    key = key->subkeys.FindShared(part);
    if (key == nullptr || key->link_target.empty()) continue;
    if (last_link_itself && path.empty()) return key;
    if (links_left-- == 0) return nullptr;
    std::string_view target = key->link_target;
    std::shared_ptr<RegistryKey> root = Root(HiveOfPath(target));
    key = Follow(std::move(root), target, false, links_left);
  }
  return key;
}

RegistryKey& Registry::MakeBelow(RegistryKey& key, std::string_view path) {
  RegistryKey* made = &key;
  while (!path.empty()) {
    const std::string_view part = TakePart(path);
    if (!part.empty()) made = &made->MakeSubkey(part);
  }
  return *made;
}

bool Registry::RemoveBelow(RegistryKey& key, std::string_view path) {
  while (path.ends_with('\\'))
    path.remove_suffix(1);
  const std::size_t last = path.rfind('\\');
  RegistryKey* parent = &key;
  if (last != std::string_view::npos) {
    std::string_view parents = path.substr(0, last);
    path.remove_prefix(last + 1);
    while (parent != nullptr && !parents.empty()) {
      const std::string_view part = TakePart(parents);
      if (!part.empty()) parent = parent->subkeys.Find(part);
    }
  }
  const std::shared_ptr<RegistryKey> gone =
      parent == nullptr || path.empty() ? nullptr : parent->subkeys.Remove(path);
  if (gone != nullptr) MarkRemoved(*gone);
  return gone != nullptr;
}

Registry::Place Registry::PlaceOf(Hive hive) const {
  switch (hive) {
    case Hive::kClassesRoot:
      return {local_machine_, "Software\\Classes"};
    case Hive::kCurrentUser:
      return {users_, current_user_};
    case Hive::kUsers:
      return {users_, ""};
    case Hive::kCurrentConfig:
      return {current_config_, ""};
    case Hive::kDynData:
      return {dyn_data_, ""};
    case Hive::kLocalMachine:
      break;
  }
  return {local_machine_, ""};
}

Hive Registry::HiveOfPath(std::string_view& path) {
  const std::string_view name = TakePart(path);
  const std::optional<Hive> hive = HiveByName(name);
  if (!hive) {
    std::fprintf(stderr, "registry: \"%.*s\" is no hive\n", static_cast<int>(name.size()),
                 name.data());
    std::abort();
  }
  return *hive;
}

RegistryKey& Registry::MakePath(std::string_view path) {
  RegistryKey& root = MakeRoot(HiveOfPath(path));
  return MakeBelow(root, path);
}

}  // namespace host
