#pragma once

#include <cstdint>
#include <span>

#include "report/probe_context.h"

namespace hostscope {

// "days:hours:minutes:seconds" of a time in milliseconds, without leading zeros.
void FormatWorkingTimeOf(std::uint32_t milliseconds, std::span<char> text);

// The time since Windows started; it starts again from 0 after 49.7 days, as the system's counter
// does. Always true.
bool FormatWorkingTime(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
