// DOS services, as 32-bit programs reach them on Windows 95/98/Me.
#pragma once

#include "platform/dos_registers.h"

namespace hostscope {

// Calls interrupt 21h with the registers, which are those after the call then; the carry flag among
// them says that DOS refused. False when the vwin32 device does not open or refuses.
bool CallDos(DosRegisters& registers);

}  // namespace hostscope
