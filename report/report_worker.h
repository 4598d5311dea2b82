#pragma once

#include "profile/profile_settings.h"
#include "report/progress_lines.h"
#include "report/run_state.h"

namespace hostscope {

// The one work area of a run: a whole profile section, a collector's text, a formatted line.
inline constexpr std::size_t kWorkAreaSize = 32767;

// The whole report, run once per process on the worker thread: reads the rest of the profile,
// creates the report file, walks the sections, closes it and, when the profile asks for it, has the
// shell open it. A profile that cannot be opened and a report file that cannot be created end the
// run with one progress line; a failed item never does. The run-complete flag is set last, when the
// end of the report was reached.
void ReportWorker(RunState& state, ProfileSettings& settings, ProgressLines& progress);

}  // namespace hostscope
