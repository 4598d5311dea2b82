// Joysticks that answer.
#pragma once

#include <cstdint>
#include <span>

#include "report/probe_context.h"

namespace hostscope {

// How many joysticks answer; none where the multimedia library is absent. Always true.
bool CountJoysticks(std::uint32_t& count);

// "present" or "not present"; always true.
bool FormatJoysticks(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
