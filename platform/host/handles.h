// Every object that the program holds open: files, searches, registry keys, threads, tokens, heap
// blocks, loaded libraries, fonts, device contexts, windows. The table counts them by kind, so that
// a test sees what stays open.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/host/windows_types.h"

namespace host {

// Base of what stands behind a handle. The kind ("file", "key", "font") is the word counted by.
class Object {
 public:
  explicit Object(const char* kind) : kind_(kind) {}
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  const char* kind() const { return kind_; }

 private:
  const char* kind_;
};

class HandleTable {
 public:
  // A new handle value for the object: small numbers from 0x100 in steps of 4, never used again.
  std::uintptr_t Open(std::shared_ptr<Object> object);
  // The object behind the value, or none for a value that is not open.
  std::shared_ptr<Object> Find(std::uintptr_t value) const;
  template <typename Kind>
  std::shared_ptr<Kind> FindAs(std::uintptr_t value) const {
    return std::dynamic_pointer_cast<Kind>(Find(value));
  }
  // Forgets the value; false when it is not open.
  bool Close(std::uintptr_t value);

  // For things that are counted without a handle value (heap blocks, item lists).
  void Count(const char* kind, int change);
  // What is open now: kind and number, kinds with 0 left out.
  std::map<std::string, int> OpenObjects() const;

 private:
  mutable std::mutex mutex_;
  std::uintptr_t next_ = 0x100;
  std::map<std::uintptr_t, std::shared_ptr<Object>> objects_;
  std::map<std::string, int> counted_;
};

}  // namespace host
