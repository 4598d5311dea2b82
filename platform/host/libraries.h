// The libraries of a machine: which there are, which of them the program finds loaded when it
// starts, and the functions they export.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/host/code_page.h"
#include "platform/host/windows_types.h"

namespace host {

struct Library {
  std::string name;                                          // "VERSION.DLL"
  bool loaded_at_start = false;                              // it then stays loaded
  std::map<std::string, FARPROC, std::less<>> exports = {};  // case counts
  std::map<WORD, FARPROC> ordinals = {};
  std::string path = {};  // of its file; empty: one of this name in the system folder
};

// A library as it is named to be loaded: one with a folder lies there, and one without an extension
// has the usual one.
Library LibraryNamed(std::string_view name);

// A function as an export.
template <typename Function>
FARPROC Export(Function* function) {
  // By way of a type that fits every function, as the compiler warns of a direct change.
  return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

// A row of a library's exports: the function under its own name.
#define HOST_EXPORT(function) \
  { #function, ::host::Export(&function) }

// A library that the layer itself implements: an object with static storage, in the file that holds
// the library's functions, gives the library to every machine made later. Several objects may add
// exports to one library.
class LayerLibrary {
 public:
  explicit LayerLibrary(const Library& library);
};

// A name is matched without regard to case, and ".DLL" is added when its last component has no dot.
// A name with a folder must be the library's own path.
class Libraries {
 public:
  Libraries();

  // Adds the library, or its exports to the library of that name.
  void Add(const Library& library);
  // Adds a library with the functions of another: its path, or its bare name for one in the system
  // folder. False: there is no such other.
  bool AddLike(std::string_view path, std::string_view other);
  // The machine has no library of that name any more; a handle of it is no longer valid.
  void Remove(std::string_view name);
  // The library exports no function of that name any more.
  void RemoveExport(std::string_view name, std::string_view function);
  // How many references the program holds.
  unsigned References(std::string_view name) const;

  // For the layer. The system folder is where libraries without a path of their own lie.
  // Loads the library, or counts one more reference to it; null: there is none.
  HMODULE Load(std::string_view name, std::string_view system_folder);
  // The loaded library, or null; no reference is counted.
  HMODULE FindLoaded(std::string_view name, std::string_view system_folder) const;
  enum class Freed { kNothing, kReference, kLoadedAtStart };
  // Gives one reference back and unloads the library with the last one. kNothing: no library of
  // that handle is loaded. kLoadedAtStart: the program holds no reference, and it stays loaded.
  Freed Free(HMODULE module);
  bool IsLoaded(HMODULE module) const;
  // The function, or null.
  FARPROC Function(HMODULE module, std::string_view name) const;
  FARPROC Function(HMODULE module, WORD ordinal) const;
  // The full path of a loaded library's file; empty: no library of that handle is loaded.
  std::string PathOf(HMODULE module, std::string_view system_folder) const;

 private:
  struct Entry {
    Library library;
    unsigned references = 0;
    HMODULE handle = nullptr;
    bool Loaded() const { return references != 0 || library.loaded_at_start; }
  };
  // With the mutex.
  const Entry* Find(std::string_view name, std::string_view system_folder) const;
  const Entry* FindLoaded(HMODULE module) const;
  Entry* FindLoaded(HMODULE module);

  mutable std::mutex mutex_;
  std::uintptr_t next_handle_ = 0x10000000;
  std::map<std::string, Entry, NoCaseLess> entries_;  // by name
};

}  // namespace host
