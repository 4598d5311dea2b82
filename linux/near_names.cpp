#include "linux/near_names.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/host/code_page.h"
#include "report/section_table.h"

namespace host {
namespace {

using hostscope::Catalogue;
using hostscope::CatalogueRow;

constexpr std::size_t kLongestName = 64;  // of which a near one is looked for

// By how many letters the names differ, whatever their case.
std::size_t Distance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j)
    row[j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j < row.size(); ++j) {
      const bool same = LowerCase(left[i - 1]) == LowerCase(right[j - 1]);
      const std::size_t replaced = diagonal + (same ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

// Whether one may be a slip of the other.
bool IsNear(std::string_view left, std::string_view right, std::size_t distance) {
  return distance <= std::clamp<std::size_t>(std::max(left.size(), right.size()) / 3, 1, 3);
}

// The section that writes below a heading.
const CatalogueRow* RowOfHeading(std::string_view heading) {
  for (const hostscope::Section& section : hostscope::SectionTable()) {
    if (section.banner == nullptr || !EqualNoCase(heading, section.banner)) continue;
    for (const CatalogueRow& row : Catalogue()) {
      const bool writes = section.list != nullptr
                              ? row.list == section.list
                              : EqualNoCase(row.section, section.profile_section);
      if (writes) return &row;
    }
  }
  return nullptr;
}

}  // namespace

const CatalogueRow* NearestSection(std::string_view name) {
  if (name.size() > kLongestName) return nullptr;
  if (const CatalogueRow* const row = RowOfHeading(name)) return row;
  const CatalogueRow* nearest = nullptr;
  std::size_t least = SIZE_MAX;
  for (const CatalogueRow& row : Catalogue()) {
    const std::size_t distance = Distance(name, row.section);
    if (distance >= least || !IsNear(name, row.section, distance)) continue;
    least = distance;
    nearest = &row;
  }
  return nearest;
}

const CatalogueRow* NearestKey(std::string_view section, std::string_view key) {
  const CatalogueRow* nearest = nullptr;
  std::size_t least = SIZE_MAX;
  if (key.size() > kLongestName) return nullptr;
  for (const CatalogueRow& row : Catalogue()) {
    if (row.key == nullptr) continue;
    const std::size_t distance = Distance(key, row.key);
    const std::size_t rank = 2 * distance + (EqualNoCase(row.section, section) ? 0 : 1);
    if (rank >= least || !IsNear(key, row.key, distance)) continue;
    least = rank;
    nearest = &row;
  }
  return nearest;
}

}  // namespace host
