// Reader of machine folders; docs/machines.md describes them.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/host/load_error.h"
#include "platform/host/machine.h"

namespace host {

// Fills a new machine from its folder: machine.ini, every *.reg in the order of their names, and a
// drive for every folder drives/X. Absent when all is well; after an error the machine is of no
// use. The error names the file below the folder.
std::optional<LoadError> LoadMachine(const std::filesystem::path& folder, Machine& machine);

}  // namespace host
