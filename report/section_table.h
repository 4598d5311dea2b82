#pragma once

#include <span>

#include "report/item.h"

namespace hostscope {

// The report's table of contents, in report order.
std::span<const Section> SectionTable();

}  // namespace hostscope
