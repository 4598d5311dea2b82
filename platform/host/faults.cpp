#include "platform/host/faults.h"

#include <cstdio>
#include <cstdlib>

#include "platform/host/functions.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {

void Faults::FailNth(std::string_view function, unsigned n, DWORD error) {
  const std::lock_guard lock(mutex_);
  Entry& entry = EntryOf(function);
  entry.fail_at[entry.calls + n] = error;
}

void Faults::FailAlways(std::string_view function, DWORD error) {
  const std::lock_guard lock(mutex_);
  EntryOf(function).fail_always = error;
}

void Faults::AtCall(std::string_view function, std::function<void()> action) {
  const std::lock_guard lock(mutex_);
  EntryOf(function).action = std::move(action);
}

void Faults::Forget() {
  const std::lock_guard lock(mutex_);
  for (auto& [function, entry] : entries_)
    entry = {.calls = entry.calls};
}

unsigned Faults::CallCount(std::string_view function) const {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(function);
  return found == entries_.end() ? 0 : found->second.calls;
}

std::map<std::string, unsigned> Faults::CallCounts() const {
  const std::lock_guard lock(mutex_);
  std::map<std::string, unsigned> counts;
  for (const auto& [function, entry] : entries_) {
    if (entry.calls != 0) counts.emplace(function, entry.calls);
  }
  return counts;
}

std::optional<DWORD> Faults::Enter(std::string_view function) {
  std::unique_lock lock(mutex_);
  Entry& entry = EntryOf(function);
  const unsigned call = ++entry.calls;
  if (entry.action) {
    const std::function<void()> action = entry.action;
    // Without the lock: the action may state further faults, also for this very call.
    lock.unlock();
    action();
    lock.lock();
  }
  const auto nth = entry.fail_at.find(call);
  return nth == entry.fail_at.end() ? entry.fail_always : nth->second;
}

Faults::Entry& Faults::EntryOf(std::string_view function) {
  const auto found = entries_.find(function);
  if (found != entries_.end()) return found->second;
  if (!IsLayerFunction(function)) {
    std::fprintf(stderr,
                 "host layer: \"%.*s\" is none of its functions (functions.cpp lists them)\n",
                 static_cast<int>(function.size()), function.data());
    std::abort();
  }
  return entries_.emplace(function, Entry()).first->second;
}

bool CallFails(const char* function) {
  const std::optional<DWORD> error = CurrentMachine().faults.Enter(function);
  if (error) SetLastError(*error);
  return error.has_value();
}

DWORD CallError(const char* function) {
  return CurrentMachine().faults.Enter(function).value_or(0);
}

std::optional<HRESULT> CallFault(const char* function) {
  const std::optional<DWORD> code = CurrentMachine().faults.Enter(function);
  if (!code) return std::nullopt;
  return static_cast<HRESULT>(*code);
}

}  // namespace host
