// The machine's sockets library, and the hosts that it resolves.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

using InternetAddress = std::array<BYTE, 4>;

struct NetworkHost {
  std::string name;
  std::vector<InternetAddress> addresses;
  std::vector<std::string> aliases;
};

struct Network {
  WORD version = 0x0202;  // the highest that the library supports: its major number in the low byte
  std::string description;
  std::string status;
  std::optional<std::string> host_name;  // none: the machine can't tell its own
  std::vector<NetworkHost> hosts;        // found by their names and aliases
  unsigned times_started = 0;            // how often the program has begun and not ended
};

}  // namespace host
