// The folders of the running Windows. Each is false, the text empty, when the system does not give
// it.
#pragma once

#include <span>

#include "report/probe_context.h"

namespace hostscope {

bool ReadWindowsFolder(ProbeContext& context, std::span<char> text);
bool ReadSystemFolder(ProbeContext& context, std::span<char> text);

// Without the backslash that the system ends it with.
bool ReadTempFolder(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
