// Where the system starts the program. There is no start-up code before it: nobody has split the
// command line or run constructors, and the process ends only by its own call.
#include "platform/program.h"
#include "platform/win32.h"

extern "C" [[noreturn]] void HscopeEntry();

extern "C" void HscopeEntry() {
  hostscope::RunProgram();
}
