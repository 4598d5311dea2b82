#pragma once

#include <span>

#include "report/probe_context.h"

namespace hostscope {

// "local name (English name)", or the one that is there when the other is missing (null); false,
// the text unchanged, when both are.
bool FormatLanguageNames(const char* local_name, const char* english_name, std::span<char> text);

// The language of the user's locale.
bool FormatUserLocale(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
