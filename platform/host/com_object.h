// What the layer's COM objects are made of. Nothing but the files of their libraries includes it.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "platform/host/machine.h"
#include "platform/host/ole32.h"

namespace host {

inline constexpr GUID kUnknownId = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// A use of an object that would bring a real program down ends this one.
inline void EndUnless(bool usable, const char* why) {
  if (usable) return;
  std::fprintf(stderr, "host layer: %s\n", why);
  std::abort();
}

// An object that lives while references to it are held; each is counted in the handle table. All
// its interfaces are one, since the program calls no more than the first one's.
template <typename Interface>
class CountedObject : public Interface {
 public:
  HRESULT QueryInterface(REFIID interface_id, void** object) override {
    CheckUse();
    const std::optional<HRESULT> fault = CallFault(query_);
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (fault) return *fault;
    if (interface_id != kUnknownId && !Has(interface_id)) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IUnknown*>(this);
    return S_OK;
  }
  ULONG AddRef() override {
    CheckUse();
    Count(1);
    return ++references_;
  }
  ULONG Release() override {
    CheckUse();
    Count(-1);
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  // The object begins with one reference, whoever makes it. `query` is the name of its function
  // that may be told to fail.
  explicit CountedObject(const char* query) : query_(query) { Count(1); }
  virtual ~CountedObject() = default;
  virtual bool Has(REFIID interface_id) const = 0;
  // Ends the process when the object's library has gone.
  virtual void CheckUse() const = 0;

 private:
  static void Count(int change) { CurrentMachine().handles.Count("COM reference", change); }

  const char* query_;
  ULONG references_ = 1;
};

// Puts a new object where the caller wants it.
template <typename Object, typename Interface>
HRESULT GiveNew(Interface** object) {
  *object = new Object;
  return S_OK;
}

}  // namespace host
