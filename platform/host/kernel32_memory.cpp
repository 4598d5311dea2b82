// The process heap. Every block is one of malloc's, so that memory checkers see a program that
// leaves it. The contents of a new block are no zeros unless asked for, and a block that changes
// its size moves.
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace {

constexpr const char* kKind = "heap block";
constexpr int kFill = 0xCD;

std::mutex blocks_mutex;
std::map<const void*, SIZE_T>& Blocks() {
  static auto* const blocks = new std::map<const void*, SIZE_T>();
  return *blocks;
}

void* Allocate(SIZE_T size, bool zero) {
  void* const block = std::malloc(std::max<SIZE_T>(size, 1));
  if (block == nullptr) return nullptr;
  std::memset(block, zero ? 0 : kFill, size);
  const std::lock_guard lock(blocks_mutex);
  Blocks().emplace(block, size);
  return block;
}

// The size of a block; the program ends when there is none at the address, as its heap would be
// broken from here on.
SIZE_T SizeOf(const void* block, const char* function) {
  const std::lock_guard lock(blocks_mutex);
  const auto found = Blocks().find(block);
  if (found == Blocks().end()) {
    std::fprintf(stderr, "host layer: %s: %p is no heap block\n", function, block);
    std::abort();
  }
  return found->second;
}

void Free(void* block) {
  {
    const std::lock_guard lock(blocks_mutex);
    Blocks().erase(block);
  }
  std::free(block);
}

constexpr const char* kPagesKind = "pages";
constexpr SIZE_T kGranularity = 0x10000;
std::map<const void*, SIZE_T>& PageBlocks() {
  static auto* const blocks = new std::map<const void*, SIZE_T>();
  return *blocks;
}

// Pages at an address below 2 GB that nothing has taken, or null.
void* MapLow(SIZE_T size) {
  for (std::uintptr_t at = 0x10000000; at + size < 0x70000000; at += 0x01000000) {
    void* const wanted = reinterpret_cast<void*>(at);
    void* const got = mmap(wanted, size, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    if (got == wanted) return got;
    // An older kernel takes the address for a wish.
    if (got != MAP_FAILED) munmap(got, size);
  }
  return nullptr;
}

}  // namespace

HANDLE WINAPI GetProcessHeap() {
  if (host::CallFails("GetProcessHeap")) return nullptr;
  return reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(0x00140000));
}

LPVOID WINAPI HeapAlloc(HANDLE, DWORD flags, SIZE_T size) {
  if (host::CallFails("HeapAlloc")) return nullptr;
  void* const block = Allocate(size, (flags & HEAP_ZERO_MEMORY) != 0);
  if (block != nullptr) host::CurrentMachine().handles.Count(kKind, 1);
  return block;
}

LPVOID WINAPI HeapReAlloc(HANDLE, DWORD flags, LPVOID block, SIZE_T size) {
  if (host::CallFails("HeapReAlloc")) return nullptr;
  if (block == nullptr) return nullptr;
  const SIZE_T old_size = SizeOf(block, "HeapReAlloc");
  void* const moved = Allocate(size, (flags & HEAP_ZERO_MEMORY) != 0);
  if (moved == nullptr) return nullptr;
  std::memcpy(moved, block, std::min(size, old_size));
  Free(block);
  return moved;
}

BOOL WINAPI HeapFree(HANDLE, DWORD, LPVOID block) {
  if (host::CallFails("HeapFree")) return FALSE;
  if (block == nullptr) return TRUE;
  SizeOf(block, "HeapFree");
  Free(block);
  host::CurrentMachine().handles.Count(kKind, -1);
  return TRUE;
}

SIZE_T WINAPI HeapSize(HANDLE, DWORD, LPCVOID block) {
  if (host::CallFails("HeapSize")) return static_cast<SIZE_T>(-1);
  return SizeOf(block, "HeapSize");
}

LPVOID WINAPI VirtualAlloc(LPVOID address, SIZE_T size, DWORD kind, DWORD protection) {
  if (host::CallFails("VirtualAlloc")) return nullptr;
  const bool known =
      address == nullptr && size != 0 && (kind & MEM_COMMIT) != 0 && protection == PAGE_READWRITE;
  const SIZE_T room = (size + kGranularity - 1) / kGranularity * kGranularity;
  void* const block = known ? MapLow(room) : nullptr;
  if (block == nullptr) {
    SetLastError(known ? ERROR_NOT_ENOUGH_MEMORY : ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  const std::lock_guard lock(blocks_mutex);
  PageBlocks().emplace(block, room);
  host::CurrentMachine().handles.Count(kPagesKind, 1);
  return block;
}

BOOL WINAPI VirtualFree(LPVOID address, SIZE_T size, DWORD kind) {
  if (host::CallFails("VirtualFree")) return FALSE;
  const std::lock_guard lock(blocks_mutex);
  const auto found = PageBlocks().find(address);
  if (size != 0 || kind != MEM_RELEASE || found == PageBlocks().end()) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  munmap(address, found->second);
  PageBlocks().erase(found);
  host::CurrentMachine().handles.Count(kPagesKind, -1);
  return TRUE;
}
