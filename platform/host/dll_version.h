// What the libraries of a machine answer when they are asked for their version (DllGetVersion).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/windows_types.h"

namespace host {

struct Machine;

struct DllVersionAnswer {
  bool extended = false;  // the 32-byte record, which has the fourth part
  bool plain = false;     // the 20-byte record
  std::array<WORD, 4> parts = {};
};

// Functions carry no state, so there is one for each library, and no more than these.
inline constexpr std::size_t kMostDllVersions = 64;

// The machine's library of that name, made when it has none, exports a DllGetVersion that answers
// so and fails for what it does not answer. What is wrong with that, or an empty text.
std::string StateDllVersion(Machine& machine, std::string_view library,
                            const DllVersionAnswer& answer);

}  // namespace host
