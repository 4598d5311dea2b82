// The two growable containers: fixed-size records and texts. Both grow by ten elements at a time,
// and by more at once when they are large.
#pragma once

#include <cstddef>

#include "util/heap.h"

namespace hostscope {

// Least growth step of every list in the program.
inline constexpr std::size_t kListGrowth = 10;

// An ordered sequence of fixed-size records, all of one size, copied in by value and read in place.
// Absent until it is created. It owns nothing that a record points to.
class RecordArray {
 public:
  RecordArray() = default;
  RecordArray(const RecordArray&) = delete;
  RecordArray& operator=(const RecordArray&) = delete;

  // Makes the array present and empty; one that was present loses its records. False when there is
  // no memory or a size is 0; the array is then absent.
  bool Create(std::size_t record_size, std::size_t growth = kListGrowth);
  bool present() const { return block_.present(); }
  // Copies the record in at the end: the index of the new record, or -1 (array unchanged) when the
  // array is absent or could not grow.
  int Append(const void* record);
  // False once a record could not be appended: the array lacks one.
  bool complete() const { return complete_; }
  // Number of records; 0 for an absent array.
  int count() const { return count_; }
  // The record in place, until the next Append; null for an index outside 0 .. count() - 1.
  void* Get(int index);
  const void* Get(int index) const { return const_cast<RecordArray*>(this)->Get(index); }
  template <typename Record>
  Record* GetAs(int index) {
    return static_cast<Record*>(Get(index));
  }
  template <typename Record>
  const Record* GetAs(int index) const {
    return static_cast<const Record*>(Get(index));
  }
  // Drops the records; the array stays present and empty. An absent one stays absent.
  void Clear() {
    count_ = 0;
    complete_ = true;
  }
  // Releases the records; the array is absent afterwards. Nothing happens to an absent one.
  void Destroy();

 private:
  bool GrowFor(std::size_t size);

  HeapBuffer block_;
  std::size_t record_size_ = 0;
  std::size_t growth_ = 0;
  int count_ = 0;
  bool complete_ = true;
};

}  // namespace hostscope
