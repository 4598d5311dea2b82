// Where the platform hands over to the program.
#pragma once

namespace hostscope {

// The whole program, from splitting the command line to the end of the process. It reads the
// command line itself and never returns: the process ends through ExitProcess with code 0.
[[noreturn]] void RunProgram();

}  // namespace hostscope
