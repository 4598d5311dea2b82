// A short notation for registry exports in tests.
#pragma once

#include <string>

#include "platform/host/machine.h"

namespace hostscope::test {

// Puts exports (without their first line) into the machine's registry. They have words of their
// own: [class DIGITS NAME] is a class of NT, whose identifier holds the digits and stands as
// <DIGITS> elsewhere, [device DIGITS ID] a present device of it; [CCS\ begins a key of the current
// control set; <N> is a text of 300 characters. Two blanks end a line.
void ReadRegistryNotation(host::Machine& machine, const std::string& exports);

}  // namespace hostscope::test
