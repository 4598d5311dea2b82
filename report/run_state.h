#pragma once

#include <atomic>

#include "platform/win32.h"
#include "profile/profile_settings.h"
#include "util/text.h"

namespace hostscope {

// The results of start-up, one record per process. Written by the entry point before the dialog
// runs; read by the dialog and the report worker.
struct RunState {
  OwnedText ini_argument;
  OwnedText out_argument;
  OwnedText program_folder;
  OwnedText profile_path;  // absent: none was found, or a special argument was given
  OwnedText report_folder;
  OwnedText report_path;
  char message_text[kLongTextSize] = {};  // of the pre-run message, placeholders replaced
  // Set by the report worker as the very last step of a run that reached the end of its report;
  // read by the entry point after the dialog has ended.
  std::atomic<bool> run_complete{false};
  HANDLE worker_thread = nullptr;  // set by the dialog when it starts the worker
};

}  // namespace hostscope
