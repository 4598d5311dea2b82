// The program's process: its end, and its threads.
#pragma once

#include <functional>

#include "platform/host/windows_types.h"

namespace host {

struct Machine;

// Thrown through the program's own frames when its process has ended; neither is a std::exception,
// so that nothing catches one by chance.
struct ProcessEnded {
  UINT code;
};
struct ThreadEnded {};

// Runs a whole program on this thread with the machine as the current one, until it returns or
// calls ExitProcess, and answers its exit code (0 when it returned). Threads it has started are
// told to end, and have ended before this returns. Afterwards the machine's handle table shows what
// the program left open.
//
// Outside of this function ExitProcess ends the Linux process itself.
int RunProcess(Machine& machine, const std::function<void()>& program);

// Ends the calling thread, by ThreadEnded, when it is one of the program's and its process has
// ended; the program's first thread ends by ProcessEnded. Every call that waits or reaches out of
// the process begins with it. Never in a call that destructors make (CloseHandle, HeapFree,
// RegCloseKey, FindClose, FreeLibrary, DestroyWindow, ...). Does nothing while an exception is
// under way.
void EndThreadIfProcessEnded();

// Both that and CallFails (platform/host/faults.h): how such a call begins.
bool EndableCallFails(const char* function);

// Whether the process that the calling thread belongs to has ended. Desktop::Wake is called when it
// ends, so that a thread that waits there looks.
bool ProcessHasEnded();

}  // namespace host
