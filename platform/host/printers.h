// The machine's printers.
#pragma once

#include "platform/host/windows_types.h"

namespace host {

struct Printers {};

}  // namespace host
