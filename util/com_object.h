// Owner of a COM object.
#pragma once

#include "platform/win32.h"

namespace hostscope {

// One reference to an object, released when the owner goes. The object must go before the library
// that made it is freed.
template <typename Interface>
class ComObject {
 public:
  ComObject() = default;
  ~ComObject() { Release(); }
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  // Takes what a call has made. False when there is nothing: the result is negative (what the call
  // has left behind then is no object), or it tells of success and the object is missing.
  bool Take(HRESULT result, Interface* made) {
    Release();
    if (SUCCEEDED(result)) object_ = made;
    return object_ != nullptr;
  }
  Interface* operator->() const { return object_; }
  // Whether the object has the interface. What it gives is released at once.
  bool Answers(const IID& interface_id) const {
    void* given = nullptr;
    const HRESULT result = object_->QueryInterface(interface_id, &given);
    ComObject<IUnknown> answer;
    return answer.Take(result, static_cast<IUnknown*>(given));
  }
  void Release() {
    if (object_ != nullptr) object_->Release();
    object_ = nullptr;
  }

 private:
  Interface* object_ = nullptr;
};

}  // namespace hostscope
