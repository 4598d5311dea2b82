// The processes that run on the machine.
#pragma once

#include "platform/host/windows_types.h"

namespace host {

struct Processes {};

}  // namespace host
