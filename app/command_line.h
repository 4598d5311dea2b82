#pragma once

#include "util/text.h"

namespace hostscope {

struct CommandLineArguments {
  OwnedText first;
  OwnedText second;
};

// The first two arguments of a whole command line; what is not there is absent. The program's name,
// which may stand between double quotes, ends at a space. An argument stands between double quotes,
// and what follows it up to the next double quote is ignored; one without its closing quote runs to
// the end of the line. An argument that begins without a quote ends at the next space. Only the
// space separates, and nothing is escaped.
CommandLineArguments SplitCommandLine(const char* command_line);

}  // namespace hostscope
