// The machine's sockets library, and the hosts that it resolves.
#pragma once

#include "platform/host/windows_types.h"

namespace host {

struct Network {};

}  // namespace host
