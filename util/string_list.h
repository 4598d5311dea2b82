#pragma once

#include "util/record_array.h"

namespace hostscope {

// An ordered sequence of owned texts. Absent until it is created; elements keep the order in which
// they were appended until the list is sorted.
class StringList {
 public:
  StringList() = default;
  ~StringList() { Destroy(); }
  StringList(const StringList&) = delete;
  StringList& operator=(const StringList&) = delete;

  // Makes the list present and empty; one that was present loses its elements. False, the list
  // absent, when there is no memory.
  bool Create(std::size_t growth = kListGrowth);
  bool present() const { return texts_.present(); }
  // Appends a private copy of the text: its index, or -1 (list unchanged) when the list is absent
  // or memory ran out.
  int Append(const char* text);
  // The same, with a second text that stays with the first one and does not count when sorting.
  int Append(const char* text, const char* companion);
  // False once a text could not be appended: the list lacks one.
  bool complete() const { return complete_; }
  // Number of elements; 0 for an absent list.
  int count() const { return texts_.count(); }
  // The element, owned by the list; null for an index outside 0 .. count() - 1.
  const char* Get(int index) const;
  // The text that was appended with the element, which must have one.
  const char* Companion(int index) const;
  // Orders the elements by the platform's case-sensitive text comparison (lstrcmpA).
  void Sort();
  // Releases every element; the list is absent afterwards. Nothing happens to an absent one.
  void Destroy();

 private:
  RecordArray texts_;  // of char*, each a block of the process heap
  bool complete_ = true;
};

}  // namespace hostscope
