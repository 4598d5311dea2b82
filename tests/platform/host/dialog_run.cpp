#include "tests/platform/host/dialog_run.h"

#include <utility>

namespace host {

DialogTemplate TestTemplate() {
  DialogTemplate dialog;
  dialog.width = 120;
  dialog.height = 80;
  dialog.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT;
  dialog.extended_style = WS_EX_CONTROLPARENT;
  dialog.caption = "Test";
  dialog.font_face = "MS Sans Serif";
  dialog.font_points = 8;
  dialog.items = {
      {"LISTBOX", "", kList, 4, 0, 100, 16, kControl | LBS_NOINTEGRALHEIGHT, 0},
      {"BUTTON", "&Send", kCheck, 4, 20, 100, 16, kControl | BS_AUTOCHECKBOX, 0},
      {"BUTTON", "&Off", kDisabled, 4, 40, 100, 16, kControl | BS_AUTOCHECKBOX | WS_DISABLED, 0},
      {"BUTTON", "&Go", kButton, 4, 60, 100, 16, kControl | BS_PUSHBUTTON, 0},
  };
  return dialog;
}

DialogRun::DialogRun(Hook hook, const DialogTemplate& dialog)
    : use_(machine_), hook_(std::move(hook)) {
  machine_.desktop.dialogs[kTestDialog] = dialog;
}

DialogRun::~DialogRun() {
  machine_.desktop.GiveUp();
  if (thread_.joinable()) thread_.join();
}

void DialogRun::Start() {
  thread_ = std::thread([this] {
    result_ = DialogBoxParamA(nullptr, MAKEINTRESOURCEA(kTestDialog), nullptr, Procedure,
                              reinterpret_cast<LPARAM>(this));
  });
  machine_.desktop.WaitUntil([this] { return machine_.desktop.ActiveWindow() != nullptr; });
  dialog_ = machine_.desktop.ActiveWindow();
  machine_.desktop.WaitForRest(dialog_);
}

INT_PTR DialogRun::WaitForEnd() {
  machine_.desktop.WaitUntil([this] { return machine_.desktop.TopWindows().empty(); });
  machine_.desktop.GiveUp();
  thread_.join();
  return result_;
}

std::string DialogRun::TakeLog() {
  const std::lock_guard lock(mutex_);
  std::string text;
  for (const std::string& line : std::exchange(log_, {}))
    text += (text.empty() ? "" : ", ") + line;
  return text;
}

void DialogRun::Note(const std::string& what) {
  const std::lock_guard lock(mutex_);
  log_.push_back(what);
}

INT_PTR CALLBACK DialogRun::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_INITDIALOG) SetWindowLongPtrA(window, DWLP_USER, lparam);
  auto* const run = reinterpret_cast<DialogRun*>(GetWindowLongPtrA(window, DWLP_USER));
  if (run == nullptr) return FALSE;
  if (run->hook_) {
    if (const INT_PTR answer = run->hook_(window, message, wparam, lparam)) return answer;
  }
  if (message == WM_INITDIALOG) return TRUE;
  if (message != WM_COMMAND) return FALSE;
  run->Note("command " + std::to_string(LOWORD(wparam)));
  if (LOWORD(wparam) == IDCANCEL) EndDialog(window, 5);
  return TRUE;
}

}  // namespace host
