#include "platform/host/libraries.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace host {
namespace {

// A function's own static: other files' static objects may come first.
std::vector<Library>& LayerLibraries() {
  static std::vector<Library> libraries;
  return libraries;
}

bool HasFolder(std::string_view name) {
  return name.find_first_of("\\/:") != std::string_view::npos;
}

std::string WithExtension(std::string_view name) {
  std::string result(name);
  std::replace(result.begin(), result.end(), '/', '\\');
  const std::size_t begin = result.find_last_of("\\:");
  const std::string_view last =
      std::string_view(result).substr(begin == std::string::npos ? 0 : begin + 1);
  const bool has_dot = last.find('.') != std::string_view::npos;
  // A final dot says that the name has no extension.
  if (has_dot && result.back() == '.') {
    result.pop_back();
  } else if (!has_dot) {
    result += ".DLL";
  }
  return result;
}

std::string FilePath(const Library& library, std::string_view system_folder) {
  if (!library.path.empty()) return library.path;
  return std::string(system_folder) + "\\" + library.name;
}

}  // namespace

LayerLibrary::LayerLibrary(const Library& library) {
  LayerLibraries().push_back(library);
}

Libraries::Libraries() {
  for (const Library& library : LayerLibraries())
    Add(library);
}

Library LibraryNamed(std::string_view name) {
  Library library{.name = WithExtension(name)};
  if (HasFolder(library.name)) library.path = library.name;
  return library;
}

void Libraries::Add(const Library& library) {
  const std::lock_guard lock(mutex_);
  const auto [found, is_new] = entries_.try_emplace(library.name);
  Entry& entry = found->second;
  if (is_new) {
    entry.library = library;
    entry.handle = reinterpret_cast<HMODULE>(next_handle_);
    next_handle_ += 0x10000;
    return;
  }
  for (const auto& [name, function] : library.exports)
    entry.library.exports.insert_or_assign(name, function);
  for (const auto& [ordinal, function] : library.ordinals)
    entry.library.ordinals.insert_or_assign(ordinal, function);
  entry.library.loaded_at_start |= library.loaded_at_start;
  if (!library.path.empty()) entry.library.path = library.path;
}

bool Libraries::AddLike(std::string_view path, std::string_view other) {
  Library library = LibraryNamed(path);
  {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(other);
    if (found == entries_.end()) return false;
    library.exports = found->second.library.exports;
    library.ordinals = found->second.library.ordinals;
  }
  Add(library);
  return true;
}

void Libraries::Remove(std::string_view name) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(name);
  if (found != entries_.end()) entries_.erase(found);
}

void Libraries::RemoveExport(std::string_view name, std::string_view function) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(name);
  if (found == entries_.end()) return;
  auto& exports = found->second.library.exports;
  const auto exported = exports.find(function);
  if (exported != exports.end()) exports.erase(exported);
}

unsigned Libraries::References(std::string_view name) const {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(name);
  return found == entries_.end() ? 0 : found->second.references;
}

HMODULE Libraries::Load(std::string_view name, std::string_view system_folder) {
  const std::lock_guard lock(mutex_);
  const Entry* const found = Find(name, system_folder);
  if (found == nullptr) return nullptr;
  ++entries_.find(found->library.name)->second.references;
  return found->handle;
}

HMODULE Libraries::FindLoaded(std::string_view name, std::string_view system_folder) const {
  const std::lock_guard lock(mutex_);
  const Entry* const found = Find(name, system_folder);
  return found == nullptr || !found->Loaded() ? nullptr : found->handle;
}

Libraries::Freed Libraries::Free(HMODULE module) {
  const std::lock_guard lock(mutex_);
  Entry* const entry = FindLoaded(module);
  if (entry == nullptr) return Freed::kNothing;
  if (entry->references == 0) return Freed::kLoadedAtStart;
  --entry->references;
  return Freed::kReference;
}

bool Libraries::IsLoaded(HMODULE module) const {
  const std::lock_guard lock(mutex_);
  return FindLoaded(module) != nullptr;
}

FARPROC Libraries::Function(HMODULE module, std::string_view name) const {
  const std::lock_guard lock(mutex_);
  const Entry* const entry = FindLoaded(module);
  if (entry == nullptr) return nullptr;
  const auto found = entry->library.exports.find(name);
  return found == entry->library.exports.end() ? nullptr : found->second;
}

FARPROC Libraries::Function(HMODULE module, WORD ordinal) const {
  const std::lock_guard lock(mutex_);
  const Entry* const entry = FindLoaded(module);
  if (entry == nullptr) return nullptr;
  const auto found = entry->library.ordinals.find(ordinal);
  return found == entry->library.ordinals.end() ? nullptr : found->second;
}

std::string Libraries::PathOf(HMODULE module, std::string_view system_folder) const {
  const std::lock_guard lock(mutex_);
  const Entry* const entry = FindLoaded(module);
  return entry == nullptr ? std::string() : FilePath(entry->library, system_folder);
}

const Libraries::Entry* Libraries::Find(std::string_view name,
                                        std::string_view system_folder) const {
  const std::string wanted = WithExtension(name);
  if (!HasFolder(wanted)) {
    const auto found = entries_.find(wanted);
    return found == entries_.end() ? nullptr : &found->second;
  }
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const auto& entry) {
    return EqualNoCase(FilePath(entry.second.library, system_folder), wanted);
  });
  return found == entries_.end() ? nullptr : &found->second;
}

const Libraries::Entry* Libraries::FindLoaded(HMODULE module) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [module](const auto& entry) {
    return entry.second.handle == module && entry.second.Loaded();
  });
  return found == entries_.end() ? nullptr : &found->second;
}

Libraries::Entry* Libraries::FindLoaded(HMODULE module) {
  return const_cast<Entry*>(std::as_const(*this).FindLoaded(module));
}

}  // namespace host
