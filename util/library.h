// Optional system libraries, bound at run time.
#pragma once

#include <array>
#include <cstddef>

#include "platform/win32.h"

namespace hostscope {

// A library that is loaded here, whether the process has it already or not, and given back when the
// owner goes.
class LoadedLibrary {
 public:
  LoadedLibrary() = default;
  ~LoadedLibrary() { Release(); }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  // False when the library is absent.
  bool Load(const char* name) {
    Release();
    module_ = LoadLibraryA(name);
    return module_ != nullptr;
  }
  // The function of that name, as the type given; null when the library has none. Only while
  // loaded.
  template <typename Function>
  Function Find(const char* name) const {
    // By way of a type that fits every function, as the compiler warns of a direct change.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module_, name)));
  }
  void Release() {
    if (module_ != nullptr) FreeLibrary(module_);
    module_ = nullptr;
  }

 private:
  HMODULE module_ = nullptr;
};

// One binding: takes the library if the process has it already, else loads it and remembers that;
// resolves every name of a table, or none: when one is missing the binding is released at once.
// Whoever uses it keeps the table of names beside the function types.
template <std::size_t kCount>
class BoundLibrary {
 public:
  BoundLibrary() = default;
  ~BoundLibrary() { Release(); }
  BoundLibrary(const BoundLibrary&) = delete;
  BoundLibrary& operator=(const BoundLibrary&) = delete;

  // False when the library or one of its functions is absent.
  bool Bind(const char* library, const std::array<const char*, kCount>& names) {
    Release();
    module_ = GetModuleHandleA(library);
    if (module_ == nullptr) {
      module_ = LoadLibraryA(library);
      loaded_here_ = module_ != nullptr;
    }
    return Resolve(names);
  }

  // The same for a library that the caller has loaded (null: it could not be). It is the binding's
  // from now on, which frees it.
  bool BindLoaded(HMODULE module, const std::array<const char*, kCount>& names) {
    Release();
    module_ = module;
    loaded_here_ = module != nullptr;
    return Resolve(names);
  }

  bool bound() const { return module_ != nullptr; }

  // The function of the table's row, as the type given. Only while bound.
  template <typename Function>
  Function Get(std::size_t row) const {
    // By way of a type that fits every function, as the compiler warns of a direct change.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(functions_[row]));
  }

  // Forgets the functions; frees the library only when it was loaded here.
  void Release() {
    if (loaded_here_) FreeLibrary(module_);
    module_ = nullptr;
    loaded_here_ = false;
    functions_ = {};
  }

 private:
  bool Resolve(const std::array<const char*, kCount>& names) {
    bool complete = module_ != nullptr;
    for (std::size_t i = 0; complete && i < kCount; ++i) {
      functions_[i] = GetProcAddress(module_, names[i]);
      complete = functions_[i] != nullptr;
    }
    if (!complete) Release();
    return complete;
  }

  HMODULE module_ = nullptr;
  bool loaded_here_ = false;
  std::array<FARPROC, kCount> functions_{};
};

}  // namespace hostscope
