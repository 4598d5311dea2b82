// What stands in for a runtime library, as far as the program needs one: the routines that the
// compiler calls on its own account, the few that the sources call, and memory by `new
// (std::nothrow)`. A plain `new` is left out: it has no way to report that there is no memory, and
// so it does not link.
#include <cstddef>
#include <cstring>
#include <new>

#include "platform/win32.h"

extern "C" {

void* memcpy(void* target, const void* source, std::size_t size) {
  auto* to = static_cast<unsigned char*>(target);
  const auto* from = static_cast<const unsigned char*>(source);
  while (size-- != 0)
    *to++ = *from++;
  return target;
}

void* memmove(void* target, const void* source, std::size_t size) {
  auto* to = static_cast<unsigned char*>(target);
  const auto* from = static_cast<const unsigned char*>(source);
  if (to <= from) return memcpy(target, source, size);
  while (size-- != 0)
    to[size] = from[size];
  return target;
}

void* memset(void* target, int value, std::size_t size) {
  auto* to = static_cast<unsigned char*>(target);
  while (size-- != 0)
    *to++ = static_cast<unsigned char>(value);
  return target;
}

int memcmp(const void* first, const void* second, std::size_t size) {
  const auto* left = static_cast<const unsigned char*>(first);
  const auto* right = static_cast<const unsigned char*>(second);
  for (; size != 0; --size, ++left, ++right) {
    if (*left != *right) return *left - *right;
  }
  return 0;
}

void* memchr(const void* block, int value, std::size_t size) {
  const auto* from = static_cast<const unsigned char*>(block);
  for (; size != 0; --size, ++from) {
    if (*from == static_cast<unsigned char>(value)) return const_cast<unsigned char*>(from);
  }
  return nullptr;
}

std::size_t strlen(const char* text) {
  std::size_t length = 0;
  while (text[length] != 0)
    ++length;
  return length;
}

// Stands in the tables of classes with pure functions; a call of it is an error of the program.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the compiler calls it so
[[noreturn]] void __cxa_pure_virtual();
void __cxa_pure_virtual() {
  ExitProcess(0);
}

}  // extern "C"

namespace std {
constinit const nothrow_t nothrow{};
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return HeapAlloc(GetProcessHeap(), 0, size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return HeapAlloc(GetProcessHeap(), 0, size);
}

// NOLINTBEGIN(misc-new-delete-overloads): there is no plain operator new, which could only throw
void operator delete(void* block) noexcept {
  if (block != nullptr) HeapFree(GetProcessHeap(), 0, block);
}
void operator delete[](void* block) noexcept {
  operator delete(block);
}
// NOLINTEND(misc-new-delete-overloads)
void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  operator delete(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
  operator delete(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  operator delete(block);
}
