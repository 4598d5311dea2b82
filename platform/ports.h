// The input and output ports of the computer's controllers, which no call of the platform reaches.
// On Windows 95/98/Me the exe reaches them through a temporary call gate into kernel mode; on NT,
// and wherever the gate can't be set, nothing is reached. On Linux the described machine's
// controllers answer.
#pragma once

#include <cstdint>

namespace hostscope {

// Each is one transfer. False, and nothing has happened, when ports can't be reached here.
bool ReadPortByte(std::uint16_t port, std::uint8_t& value);
bool ReadPortWord(std::uint16_t port, std::uint16_t& value);
bool WritePortByte(std::uint16_t port, std::uint8_t value);

// For any thread, before the process ends: no transfer begins any more on Windows 95/98/Me, and the
// one under way is over, so that no gate outlives the process. Waits some seconds at most.
// Elsewhere a transfer leaves nothing behind, and this does nothing.
void EndPortTransfers();

}  // namespace hostscope
