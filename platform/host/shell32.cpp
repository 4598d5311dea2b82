#include "platform/host/shell32.h"

#include <cstdlib>
#include <cstring>

#include "platform/host/desktop_state.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"

namespace host {
namespace {

const LayerLibrary kLibrary({.name = "SHELL32.DLL", .loaded_at_start = true});

constexpr std::uintptr_t kOpened = 33;  // what ShellExecuteA answers is above 32 when all went well
constexpr std::uintptr_t kOutOfMemory = 0;

struct Allocator final : IMalloc {
  ULONG AddRef() override {
    CurrentMachine().handles.Count("shell allocator", 1);
    return 2;
  }
  ULONG Release() override {
    CurrentMachine().handles.Count("shell allocator", -1);
    return 1;
  }
  void* Alloc(SIZE_T size) override {
    void* const block = std::malloc(size);
    if (block != nullptr) CurrentMachine().handles.Count("item list", 1);
    return block;
  }
  void Free(void* block) override {
    if (block != nullptr) CurrentMachine().handles.Count("item list", -1);
    std::free(block);
  }
};

constinit Allocator allocator;

// An item list with one item, which holds the path with its zero; a size of 0 ends the list.
LPITEMIDLIST MakeItemList(const std::string& path) {
  const auto size = static_cast<USHORT>(sizeof(USHORT) + path.size() + 1);
  auto* const bytes = static_cast<BYTE*>(allocator.Alloc(size + sizeof(USHORT)));
  if (bytes == nullptr) return nullptr;
  const USHORT end = 0;
  std::memcpy(bytes, &size, sizeof(size));
  std::memcpy(bytes + sizeof(size), path.c_str(), path.size() + 1);
  std::memcpy(bytes + size, &end, sizeof(end));
  return reinterpret_cast<LPITEMIDLIST>(bytes);
}

}  // namespace
}  // namespace host

using host::CallFails;

HRESULT SHGetMalloc(LPMALLOC* allocator) {
  if (CallFails("SHGetMalloc")) return E_FAIL;
  host::allocator.AddRef();
  *allocator = &host::allocator;
  return S_OK;
}

HRESULT SHGetSpecialFolderLocation(HWND, int folder, LPITEMIDLIST* list) {
  *list = nullptr;
  if (CallFails("SHGetSpecialFolderLocation")) return E_FAIL;
  const auto& folders = host::CurrentMachine().special_folders;
  const auto found = folders.find(folder);
  if (found == folders.end()) return E_FAIL;
  *list = host::MakeItemList(found->second);
  return *list != nullptr ? S_OK : E_OUTOFMEMORY;
}

BOOL SHGetPathFromIDListA(LPCITEMIDLIST list, LPSTR path) {
  if (CallFails("SHGetPathFromIDListA") || list == nullptr || list->mkid.cb == 0) return FALSE;
  const char* const text = reinterpret_cast<const char*>(list) + sizeof(USHORT);
  const std::size_t length = std::strlen(text);
  if (length >= static_cast<std::size_t>(MAX_PATH)) return FALSE;
  std::memcpy(path, text, length + 1);
  return TRUE;
}

HINSTANCE ShellExecuteA(HWND owner, LPCSTR verb, LPCSTR target, LPCSTR parameters, LPCSTR folder,
                        int show_command) {
  if (CallFails("ShellExecuteA")) return reinterpret_cast<HINSTANCE>(host::kOutOfMemory);
  const auto text = [](LPCSTR given) { return std::string(given != nullptr ? given : ""); };
  // Under the lock: the threads of the dialog and of the report both open things.
  const host::LockedDesktop desktop;
  desktop->shell_openings.push_back(
      {owner, text(verb), text(target), show_command, parameters != nullptr, folder != nullptr});
  host::CurrentMachine().opened_targets.push_back(text(target));
  desktop->Changed();
  return reinterpret_cast<HINSTANCE>(host::kOpened);
}
