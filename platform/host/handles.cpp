#include "platform/host/handles.h"

#include <utility>

namespace host {

std::uintptr_t HandleTable::Open(std::shared_ptr<Object> object) {
  const std::lock_guard lock(mutex_);
  const std::uintptr_t value = next_;
  next_ += 4;
  objects_.emplace(value, std::move(object));
  return value;
}

std::shared_ptr<Object> HandleTable::Find(std::uintptr_t value) const {
  const std::lock_guard lock(mutex_);
  const auto found = objects_.find(value);
  return found == objects_.end() ? nullptr : found->second;
}

bool HandleTable::Close(std::uintptr_t value) {
  std::shared_ptr<Object> closed;  // ends after the lock: its end may come back to this table
  const std::lock_guard lock(mutex_);
  const auto found = objects_.find(value);
  if (found == objects_.end()) return false;
  closed = std::move(found->second);
  objects_.erase(found);
  return true;
}

void HandleTable::Count(const char* kind, int change) {
  const std::lock_guard lock(mutex_);
  counted_[kind] += change;
}

std::map<std::string, int> HandleTable::OpenObjects() const {
  const std::lock_guard lock(mutex_);
  std::map<std::string, int> open = counted_;
  for (const auto& [value, object] : objects_)
    ++open[object->kind()];
  std::erase_if(open, [](const auto& entry) { return entry.second == 0; });
  return open;
}

}  // namespace host
