// Stands between hscope.exe and the system's memory, and counts what the program has of the heap
// and of pages that it asks for itself. Only the program's own calls come here; what the system's
// libraries take for themselves is not counted. bench/memory.py reads the figures from the outside.
#include <windows.h>

// Bytes that the program has now, and has had at most.
extern volatile LONG counted_bytes asm("counted_bytes");
extern volatile LONG counted_peak asm("counted_peak");
volatile LONG counted_bytes = 0;
volatile LONG counted_peak = 0;

namespace {

// The real functions: this program has no import of these names.
template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("KERNEL32.DLL"), name)));
}

// Several threads count.
void Count(SIZE_T bytes) {
  const LONG more = static_cast<LONG>(bytes);
  asm volatile("lock addl %1, %0" : "+m"(counted_bytes) : "r"(more) : "cc");
  const LONG now = counted_bytes;
  if (now > counted_peak) counted_peak = now;
}

LPVOID WINAPI CountedAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
  void* const block = Real<decltype(HeapAlloc)>("HeapAlloc")(heap, flags, size);
  if (block != nullptr) Count(HeapSize(heap, 0, block));
  return block;
}

LPVOID WINAPI CountedReAlloc(HANDLE heap, DWORD flags, LPVOID old, SIZE_T size) {
  const SIZE_T old_size = HeapSize(heap, 0, old);
  void* const block = Real<decltype(HeapReAlloc)>("HeapReAlloc")(heap, flags, old, size);
  if (block != nullptr) Count(HeapSize(heap, 0, block) - old_size);
  return block;
}

BOOL WINAPI CountedFree(HANDLE heap, DWORD flags, LPVOID block) {
  Count(0 - HeapSize(heap, 0, block));
  return Real<decltype(HeapFree)>("HeapFree")(heap, flags, block);
}

// Of whole pages that are all alike, as the program asks for them.
SIZE_T PagesSize(const void* pages) {
  MEMORY_BASIC_INFORMATION region = {};
  return VirtualQuery(pages, &region, sizeof region) == 0 ? 0 : region.RegionSize;
}

LPVOID WINAPI CountedPagesAlloc(LPVOID place, SIZE_T size, DWORD type, DWORD protection) {
  void* const pages = Real<decltype(VirtualAlloc)>("VirtualAlloc")(place, size, type, protection);
  if (pages != nullptr) Count(PagesSize(pages));
  return pages;
}

BOOL WINAPI CountedPagesFree(LPVOID pages, SIZE_T size, DWORD type) {
  Count(0 - PagesSize(pages));
  return Real<decltype(VirtualFree)>("VirtualFree")(pages, size, type);
}

}  // namespace

extern "C" {
extern const void* const counted_alloc asm("__imp__HeapAlloc@12");
extern const void* const counted_realloc asm("__imp__HeapReAlloc@16");
extern const void* const counted_free asm("__imp__HeapFree@12");
extern const void* const counted_pages_alloc asm("__imp__VirtualAlloc@16");
extern const void* const counted_pages_free asm("__imp__VirtualFree@12");
const void* const counted_alloc = reinterpret_cast<const void*>(CountedAlloc);
const void* const counted_realloc = reinterpret_cast<const void*>(CountedReAlloc);
const void* const counted_free = reinterpret_cast<const void*>(CountedFree);
const void* const counted_pages_alloc = reinterpret_cast<const void*>(CountedPagesAlloc);
const void* const counted_pages_free = reinterpret_cast<const void*>(CountedPagesFree);

}  // extern "C"
