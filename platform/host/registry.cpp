#include "platform/host/registry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

namespace host {

namespace {

constexpr std::string_view kLinkValue = "SymbolicLinkValue";

}  // namespace

template <typename Slot, typename Reference>
Reference NamedItems<Slot, Reference>::Refer(const Slot& slot) {
  if constexpr (std::is_same_v<Slot, Reference>) {
    return slot;
  } else {
    return &*slot;
  }
}

template <typename Slot, typename Reference>
std::size_t NamedItems<Slot, Reference>::Number(std::string_view name) const {
  const auto is_it = [name](const Slot& slot) { return slot && EqualNoCase(slot->name, name); };
  if (index_ && !index_->places.empty()) {
    const std::size_t mask = index_->places.size() - 1;
    for (std::size_t at = NoCaseHash()(name) & mask; index_->places[at] != 0;
         at = (at + 1) & mask) {
      const std::size_t number = index_->places[at] - 1;
      if (is_it(slots_[number])) return number;
    }
    return kNotFound;
  }
  const auto found = std::find_if(slots_.begin(), slots_.end(), is_it);
  return found == slots_.end() ? kNotFound : static_cast<std::size_t>(found - slots_.begin());
}

template <typename Slot, typename Reference>
Reference NamedItems<Slot, Reference>::Find(std::string_view name) const {
  const std::size_t number = Number(name);
  if (number == kNotFound) return Reference();
  return Refer(slots_[number]);
}

template <typename Slot, typename Reference>
Slot* NamedItems<Slot, Reference>::FindSlot(std::string_view name) {
  const std::size_t number = Number(name);
  return number == kNotFound ? nullptr : &slots_[number];
}

template <typename Slot, typename Reference>
auto NamedItems<Slot, Reference>::MakeIndex() const -> Index& {
  if (!index_) index_ = std::make_unique<Index>();
  return *index_;
}

template <typename Slot, typename Reference>
void NamedItems<Slot, Reference>::PutInPlace(std::size_t number) {
  std::vector<std::uint32_t>& places = index_->places;
  const std::size_t mask = places.size() - 1;
  std::size_t at = NoCaseHash()(slots_[number]->name) & mask;
  while (places[at] != 0)
    at = (at + 1) & mask;
  places[at] = static_cast<std::uint32_t>(number + 1);
}

// Twice as many places as items or more, and no slots without an item.
template <typename Slot, typename Reference>
void NamedItems<Slot, Reference>::PutAllInPlaces() {
  Index& index = MakeIndex();
  std::erase_if(slots_, [](const Slot& slot) { return !slot; });
  index.removed = 0;
  index.places.assign(std::bit_ceil(2 * slots_.size()), 0);
  for (std::size_t number = 0; number < slots_.size(); ++number)
    PutInPlace(number);
}

template <typename Slot, typename Reference>
Slot& NamedItems<Slot, Reference>::Add(Slot item) {
  if (index_) index_->order.clear();
  const std::size_t number = slots_.size();
  if (number < kFewItems) slots_.reserve(number + 1);
  slots_.push_back(std::move(item));
  const std::size_t places = index_ ? index_->places.size() : 0;
  if (places >= 4 * slots_.size() / 3 + 1) {
    PutInPlace(number);
  } else if (places != 0 || slots_.size() > kFewItems) {
    PutAllInPlaces();
  }
  return slots_.back();
}

template <typename Slot, typename Reference>
Slot NamedItems<Slot, Reference>::Remove(std::string_view name) {
  const std::size_t number = Number(name);
  if (number == kNotFound) return Slot();
  Index& index = MakeIndex();
  index.order.clear();
  ++index.removed;
  Slot item = std::exchange(slots_[number], Slot());
  if (index.removed == slots_.size()) TakeAll();
  return item;
}

template <typename Slot, typename Reference>
void NamedItems<Slot, Reference>::WorkOutOrder(bool sorted) const {
  Index& index = MakeIndex();
  if (!index.order.empty() && index.order_is_sorted == sorted) return;
  index.order.clear();
  for (std::size_t number = 0; number < slots_.size(); ++number) {
    if (slots_[number]) index.order.push_back(static_cast<std::uint32_t>(number));
  }
  if (sorted) {
    std::stable_sort(index.order.begin(), index.order.end(), [this](std::size_t a, std::size_t b) {
      return NoCaseLess()(slots_[a]->name, slots_[b]->name);
    });
  }
  index.order_is_sorted = sorted;
}

template <typename Slot, typename Reference>
Reference NamedItems<Slot, Reference>::At(std::size_t index, bool sorted) const {
  if (index >= size()) return Reference();
  if (size() == slots_.size() && (!sorted || size() == 1)) return Refer(slots_[index]);
  WorkOutOrder(sorted);
  return Refer(slots_[index_->order[index]]);
}

template <typename Slot, typename Reference>
std::vector<Slot> NamedItems<Slot, Reference>::TakeAll() {
  std::vector<Slot> all = std::exchange(slots_, {});
  index_.reset();
  std::erase_if(all, [](const Slot& slot) { return !slot; });
  return all;
}

template class NamedItems<std::shared_ptr<RegistryKey>, std::shared_ptr<RegistryKey>>;
template class NamedItems<std::optional<RegistryValue>, const RegistryValue*>;

static_assert(sizeof(RegistryKey) <= 128, "there may be a million of them");

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
  if (std::optional<RegistryValue>* const value = values.FindSlot(value_name)) {
    (*value)->type = type;
    (*value)->data = std::move(data);
  } else {
    values.Add(RegistryValue(std::string(value_name), type, std::move(data)));
  }
}

RegistryKey& RegistryKey::MakeSubkey(std::string_view subkey_name) {
  if (const auto* const subkey = subkeys.FindSlot(subkey_name)) return **subkey;
  return *subkeys.Add(std::make_shared<RegistryKey>(std::string(subkey_name)));
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
  link.is_link = true;
  link.SetValue(kLinkValue, kRegistryLink, std::string(target));
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
  return key != nullptr && key->values.Remove(name).has_value();
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
    if (!part.empty()) key = key->subkeys.Find(part);
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
    key = key->subkeys.Find(part);
    if (key == nullptr || !key->is_link) continue;
    if (last_link_itself && path.empty()) return key;
    if (links_left-- == 0) return nullptr;
    const RegistryValue* const value = key->values.Find(kLinkValue);
    if (value == nullptr) return nullptr;
    std::string_view target = value->data;
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
      if (!part.empty()) parent = parent->subkeys.Find(part).get();
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
