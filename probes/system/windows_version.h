#pragma once

#include <cstdint>
#include <span>

#include "platform/win32.h"
#include "report/probe_context.h"

namespace hostscope {

// What the name of the running system is decided from.
struct WindowsVersionFacts {
  OSVERSIONINFOEXA record = {};
  // The system accepted the 156-byte record; only then does it fill the product type.
  bool extended = false;
  // Of NT 4.0 only, from its registry; absent facts stay empty and 0.
  char product_type[32] = {};
  std::uint32_t service_pack = 0;
  bool hotfix_q246009 = false;
};

// "name product version major.minor.build service pack". At most 1023 characters.
void FormatWindowsVersionFacts(const WindowsVersionFacts& facts, std::span<char> text);

// The same for the running system; false, the text empty, when the version record cannot be read.
bool FormatWindowsVersion(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
