#pragma once

#include <span>

#include "platform/win32.h"
#include "util/text.h"

namespace hostscope {

// The text that a dump shows of a value's data:
//   no data, whatever the type            (value not set)
//   REG_SZ, REG_EXPAND_SZ                 "text", all but the last byte up to the first zero
//   REG_DWORD, REG_DWORD_BIG_ENDIAN       0x0000000a (10)
//   REG_QWORD                             0x000000000000000a (10)
//   REG_MULTI_SZ                          "one","two"; nothing when the first text is empty
//   any other type, a number too short    01 ff , a blank after every byte
// A number is what its first bytes say; the last text of a list may lack its terminator. None when
// there is no memory.
OwnedText FormatRegistryValue(DWORD type, std::span<const char> data);

}  // namespace hostscope
