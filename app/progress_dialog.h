#pragma once

#include "app/background.h"
#include "app/controls/embossed_check_box.h"
#include "app/controls/g_label.h"
#include "app/controls/hyper_link.h"
#include "app/controls/tsp_button.h"
#include "app/progress_list.h"
#include "app/worker_thread.h"
#include "profile/profile_settings.h"
#include "report/run_state.h"

namespace hostscope {

// The program's only window. With a profile it runs the report worker and shows what it does;
// without one it shows a notice. The user closes it.
class ProgressDialog {
 public:
  // The object must outlive the worker thread, which may be as late as the end of the process.
  ProgressDialog(RunState& state, ProfileSettings& settings)
      : state_(state), settings_(settings), worker_(state, settings), list_(worker_) {}
  ProgressDialog(const ProgressDialog&) = delete;
  ProgressDialog& operator=(const ProgressDialog&) = delete;

  // Runs the dialog until it is closed. `icon` is that of its window class. The setting `email`
  // follows the check box. False when the user has left while the worker was running: it still is,
  // perhaps.
  bool Run(HINSTANCE instance, HICON icon);

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam);

  void Initialise();
  void SetCaption();
  void CreateControls();
  void PrepareCheckBox();
  void Centre();
  void StartRunOrNotice();

  bool Command(WORD id);
  void CloseOnRequest();
  bool Paint();
  void Destroy();

  RunState& state_;
  ProfileSettings& settings_;
  HINSTANCE instance_ = nullptr;
  HICON icon_ = nullptr;
  HWND window_ = nullptr;
  WorkerThread worker_;
  bool left_worker_running_ = false;
  Background background_;
  ProgressList list_;
  HyperLink web_address_;
  GLabel title_;
  GLabel notice_;
  TspButton close_button_;
  EmbossedCheckBox email_check_box_;
};

}  // namespace hostscope
