#include <memory>
#include <new>

#include "app/command_line.h"
#include "app/pre_run_message.h"
#include "app/progress_dialog.h"
#include "app/report_location.h"
#include "app/start_notice.h"
#include "delivery/simple_mapi.h"
#include "platform/ports.h"
#include "platform/program.h"
#include "platform/resources.h"
#include "platform/win32.h"
#include "profile/catalogue.h"
#include "profile/profile_settings.h"
#include "profile/read_profile.h"
#include "report/run_state.h"
#include "util/paths.h"

namespace hostscope {
namespace {

// Everything that lives as long as the process; on the heap, as a stack may be small.
struct Program {
  RunState state;
  ProfileSettings settings;
  ProgressDialog dialog{state, settings};
};

void ReadCommandLine(RunState& state) {
  CommandLineArguments arguments = SplitCommandLine(GetCommandLineA());
  state.ini_argument = static_cast<OwnedText&&>(arguments.first);
  state.out_argument = static_cast<OwnedText&&>(arguments.second);
}

void ChooseProfile(RunState& state) {
  state.program_folder = ProgramFolder();
  if (!state.ini_argument.present()) {
    state.profile_path = FindProfile(state.program_folder.c_str());
  } else if (!AsksForNotice(state.ini_argument.c_str())) {
    state.profile_path = JoinPath(state.program_folder.c_str(), state.ini_argument.c_str());
  }
}

// What the profile says about the time before the run. False when the user declines the run.
bool PrepareRun(RunState& state, ProfileSettings& settings) {
  const char* const profile = state.profile_path.c_str();
  ReadProfile(profile, ReadMoment::kStartUp, settings, {});
  LocateReport(state, settings);
  if (settings.create_message_box != 0) {
    ReadProfile(profile, ReadMoment::kMessage, settings, {});
    if (!ConfirmPreRunMessage(state, settings)) return false;
  }
  ReadProfile(profile, ReadMoment::kDialog, settings, {});
  return true;
}

// False when the worker is left running.
bool RunDialog(ProgressDialog& dialog) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  InitCommonControls();
  return dialog.Run(instance, LoadIconA(instance, MAKEINTRESOURCEA(kIconId)));
}

// Hands a finished report to the mail client when the profile or the dialog's check box says so.
void MailReport(const RunState& state, const ProfileSettings& settings) {
  if (!state.run_complete || settings.email == 0) return;
  SimpleMapi mapi;
  if (!mapi.LoadSimpleMapi()) return;
  mapi.SendReportMail({.to = settings.recipient_address,
                       .name = settings.recipient_name,
                       .cc = settings.cc,
                       .bcc = settings.bcc,
                       .subject = settings.subject,
                       .body = settings.email_body,
                       .attachment_path = state.report_path.c_str()});
  mapi.UnloadSimpleMapi();
}

void ReleasePaths(RunState& state) {
  state.report_folder.Release();
  state.report_path.Release();
  state.program_folder.Release();
  state.profile_path.Release();
}

void Run(Program& program) {
  RunState& state = program.state;
  ReadCommandLine(state);
  ChooseProfile(state);
  if (state.profile_path.present() && !PrepareRun(state, program.settings)) {
    ReleasePaths(state);
    return;
  }
  // A worker that is left running ends with the process. Until then it uses all this, and it must
  // not find it gone.
  if (!RunDialog(program.dialog)) return;
  MailReport(state, program.settings);
  ReleasePaths(state);
  DestroyLists(program.settings);
}

}  // namespace

void RunProgram() {
  const std::unique_ptr<Program> program(new (std::nothrow) Program);
  if (program != nullptr) Run(*program);
  // A worker that is left running must not be ended in the middle of a transfer.
  EndPortTransfers();
  ExitProcess(0);
}

}  // namespace hostscope
