#pragma once

#include <span>

#include "report/probe_context.h"

namespace hostscope {

// "version (date)" of the BIOS, or the version alone when there is no date; false, the text empty,
// when the registry has no version.
bool ReadBiosVersion(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
