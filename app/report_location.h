#pragma once

#include <cstdint>

#include "profile/profile_settings.h"
#include "report/run_state.h"

namespace hostscope {

// What the profile's key OutputFolder may say; any other number is the program folder.
enum class OutputFolder : std::int32_t {
  kArgument = 0,  // the folder of the command line, else the program folder
  kDesktop = 1,
  kDocuments = 2,
};

// Works out the folder and the path of the report from the arguments, the program folder and the
// start-up keys, which have been read. A desktop or documents folder that the shell cannot give is
// the empty text.
void LocateReport(RunState& state, const ProfileSettings& settings);

}  // namespace hostscope
