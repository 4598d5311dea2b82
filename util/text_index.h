#pragma once

#include "util/string_list.h"

namespace hostscope {

// Finds the elements of a list by their text, byte for byte, in a time that does not grow with the
// list. While there is an index, whatever is appended to the list comes in through it. Without
// memory for the index the list itself is searched.
class TextIndex {
 public:
  // Indexes what the list holds.
  explicit TextIndex(StringList& list);
  TextIndex(const TextIndex&) = delete;
  TextIndex& operator=(const TextIndex&) = delete;

  // Appends the text to the list unless an element equals it.
  void AppendIfNew(const char* text);

 private:
  // The slot that holds the text's element, or the empty one where it belongs.
  int& SlotOf(const char* text);
  bool ListHolds(const char* text) const;
  // Makes the table large enough for one more element; false, without a table, for want of memory.
  bool MakeRoom();

  StringList& list_;
  HeapBuffer slots_;  // of int: an element's index plus 1, or 0; a power of two of them
  unsigned slot_count_ = 0;
};

}  // namespace hostscope
