#pragma once

#include <cstddef>

namespace hostscope {

// One page file. Every field is a zero-terminated text; the sizes are in MB, "?" or empty where
// they are not known.
struct PageFileRecord {
  char name[260];  // full path
  char size[21];
  char maximum[21];
  char minimum[21];
};

// Size of one element of the page-file list.
inline constexpr std::size_t kPageFileRecordSize = 323;
static_assert(sizeof(PageFileRecord) == kPageFileRecordSize);

}  // namespace hostscope
