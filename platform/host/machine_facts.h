// The facts of machine.ini: which sections and keys there are, and what of the machine each states.
#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host/ini_file.h"
#include "platform/host/load_error.h"
#include "platform/host/machine.h"

namespace host {

// Every section with its keys, in the order of the description; "*" where a section takes any key.
std::vector<std::pair<std::string_view, std::string_view>> MachineFactNames();

// Puts what the sections state into the machine, which must be a new one; absent when all is well.
// The error's file is empty.
std::optional<LoadError> StateMachineFacts(const std::vector<IniSection>& sections,
                                           Machine& machine);

}  // namespace host
