// The machine's physical disks and its drive letters.
#pragma once

#include "platform/host/windows_types.h"

namespace host {

struct Disks {};

}  // namespace host
