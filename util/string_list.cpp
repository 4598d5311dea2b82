#include "util/string_list.h"

#include <algorithm>

#include "platform/win32.h"
#include "util/text.h"

namespace hostscope {
namespace {

void ReleaseElement(char* element) {
  HeapFree(GetProcessHeap(), 0, element);
}

// The companion, where there is one, stands behind the text's terminator.
char* CopyElement(const char* text, const char* companion) {
  const std::size_t size = TextLength(text) + 1;
  const std::size_t companion_size = companion == nullptr ? 0 : TextLength(companion) + 1;
  char* const copy = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, size + companion_size));
  if (copy == nullptr) return nullptr;
  CopyText(copy, size, text);
  if (companion != nullptr) CopyText(copy + size, companion_size, companion);
  return copy;
}

}  // namespace

bool StringList::Create(std::size_t growth) {
  Destroy();
  return texts_.Create(sizeof(char*), growth);
}

int StringList::Append(const char* text) {
  return Append(text, nullptr);
}

int StringList::Append(const char* text, const char* companion) {
  char* const copy = CopyElement(text, companion);
  const int index = copy == nullptr ? -1 : texts_.Append(&copy);
  if (index >= 0) return index;
  if (copy != nullptr) ReleaseElement(copy);
  complete_ = false;
  return index;
}

const char* StringList::Get(int index) const {
  const auto* const element = texts_.GetAs<char*>(index);
  return element == nullptr ? nullptr : *element;
}

const char* StringList::Companion(int index) const {
  const char* const element = Get(index);
  return element == nullptr ? nullptr : element + TextLength(element) + 1;
}

void StringList::Sort() {
  if (count() < 2) return;
  auto* const first = texts_.GetAs<char*>(0);
  // Heap sort: no recursion on a small stack, no worst case. Texts that compare equal stand in no
  // particular order.
  const auto before = [](const char* left, const char* right) { return lstrcmpA(left, right) < 0; };
  std::make_heap(first, first + count(), before);
  std::sort_heap(first, first + count(), before);
}

void StringList::Destroy() {
  for (int i = 0; i < texts_.count(); ++i)
    ReleaseElement(*texts_.GetAs<char*>(i));
  texts_.Destroy();
  complete_ = true;
}

}  // namespace hostscope
