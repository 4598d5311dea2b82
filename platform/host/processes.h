// The processes that run on the machine.
#pragma once

#include <string>
#include <vector>

#include "platform/host/windows_types.h"

namespace host {

struct Machine;

struct ListedProcess {
  DWORD id = 0;
  std::string name;      // of the image: a full path on Windows 95/98/Me; NT has none for process 0
  bool refused = false;  // it does not open
  DWORD priority_class = 0x20;
  DWORD version = 0x00040000;  // GetProcessVersion
  // NT alone tells these.
  DWORD threads = 1;
  DWORD handles = 0;
  DWORD memory = 0;  // working set
  DWORD pagefile = 0;
  DWORD page_faults = 0;
  DWORD paged_pool = 0;
  DWORD non_paged_pool = 0;
};

struct Processes {
  std::vector<ListedProcess> listed;  // in the order in which the platform lists them
  DWORD own_id = 0x100;               // of the program; the last of all when it is not among them
};

// All that are listed, and the program.
std::vector<ListedProcess> RunningProcesses(const Machine& machine);

}  // namespace host
