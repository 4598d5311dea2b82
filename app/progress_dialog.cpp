#include "app/progress_dialog.h"

#include "app/start_notice.h"
#include "platform/resources.h"
#include "report/progress_lines.h"

namespace hostscope {
namespace {

inline constexpr int kCaptionSize = 50;
inline constexpr COLORREF kListTextColor = 0x00F000;
inline constexpr COLORREF kListBackgroundColor = 0;
inline constexpr COLORREF kLabelDownRightColor = 0xC8C8C8;
inline constexpr COLORREF kLabelUpLeftColor = 0xF0F0F0;

inline constexpr char kDialogFace[] = "MS Sans Serif";
inline constexpr FontChoice kTextFont = {
    .face = kDialogFace, .points = 8, .width = 0, .style = 0, .weight = FW_NORMAL};
inline constexpr FontChoice kTitleFont = {
    .face = kDialogFace, .points = 14, .width = 0, .style = 0, .weight = FW_BOLD};

// The second line leads to the web address, which stands to the right of it.
inline constexpr char kNoticeText[] =
    "Copyright by the Hostscope developers\n"
    "Visit us:";

inline constexpr char kAbortQuestion[] =
    "System information report has not yet created!\nDo you want abort program?";

}  // namespace

bool ProgressDialog::Run(HINSTANCE instance, HICON icon) {
  instance_ = instance;
  icon_ = icon;
  DialogBoxParamA(instance, MAKEINTRESOURCEA(kProgressDialogId), nullptr, Procedure,
                  reinterpret_cast<LPARAM>(this));
  return !left_worker_running_;
}

void ProgressDialog::Initialise() {
  SetClassLongPtrA(window_, GCLP_HICON, reinterpret_cast<LONG_PTR>(icon_));
  SetCaption();
  background_.Load(window_, instance_, kBackgroundId);
  CreateControls();
  list_.Attach(GetDlgItem(window_, kProgressListId));
  PrepareCheckBox();
  Centre();
  StartRunOrNotice();
}

void ProgressDialog::SetCaption() {
  char caption[kCaptionSize] = {};
  LoadStringA(instance_, kCaptionId, caption, kCaptionSize);
  SetWindowTextA(window_, caption);
}

void ProgressDialog::CreateControls() {
  RECT client = {};
  GetClientRect(window_, &client);
  const int width = client.right;
  const int height = client.bottom;
  char address[kControlTextSize] = {};
  LoadStringA(instance_, kWebAddressId, address, kControlTextSize);

  web_address_.Create(window_, {.target = address,
                                .caption_id = kWebAddressId,
                                .place = {130, 40, width - 137, 15},
                                .font = kTextFont,
                                .format = DT_SINGLELINE | DT_RIGHT | DT_NOCLIP,
                                .normal_color = 0x828C00,
                                .hover_color = 0x00FFFF,
                                .pressed_color = 0x32F0FF});
  title_.Create(window_, {.text = "Hostscope Utility",
                          .place = {6, 2, width - 12, 25},
                          .font = kTitleFont,
                          .format = DT_SINGLELINE | DT_NOCLIP,
                          .text_color = 0xC88C00,
                          .down_right_color = kLabelDownRightColor,
                          .up_left_color = kLabelUpLeftColor});
  notice_.Create(window_, {.text = kNoticeText,
                           .place = {6, 27, width - 12, 30},
                           .font = kTextFont,
                           .format = DT_LEFT | DT_TOP,
                           .text_color = 0xB49664,
                           .down_right_color = kLabelDownRightColor,
                           .up_left_color = kLabelUpLeftColor});
  close_button_.Create(window_, {.caption_id = kCloseTextId,
                                 .place = {width - 72, height - 24, 65, 19},
                                 .font = kTextFont,
                                 .id = kCloseButtonId});
}

void ProgressDialog::PrepareCheckBox() {
  email_check_box_.SetColors(0x5A5A5A, kNoCheckBoxLayer, kNoCheckBoxLayer);
  email_check_box_.Attach(GetDlgItem(window_, kEmailCheckBoxId));
  email_check_box_.SetCheck(static_cast<WPARAM>(settings_.email));
  if (settings_.email == 0 || settings_.email_check_box == 0) email_check_box_.Enable(false);
}

void ProgressDialog::Centre() {
  RECT place = {};
  GetWindowRect(window_, &place);
  const int width = place.right - place.left;
  const int height = place.bottom - place.top;
  MoveWindow(window_, (GetSystemMetrics(SM_CXSCREEN) - width) / 2,
             (GetSystemMetrics(SM_CYSCREEN) - height) / 2, width, height, TRUE);
}

void ProgressDialog::StartRunOrNotice() {
  if (state_.profile_path.present()) {
    worker_.Start(list_.window());
    return;
  }
  ProgressLines progress(list_.window());
  for (const char* const line : StartNotice(state_.ini_argument.c_str()))
    progress.AddProgressLine(line);
}

void ProgressDialog::CloseOnRequest() {
  if (worker_.running() &&
      MessageBoxA(window_, kAbortQuestion, "Message", MB_YESNO | MB_ICONEXCLAMATION) != IDYES) {
    return;
  }
  EndDialog(window_, 0);
}

bool ProgressDialog::Command(WORD id) {
  switch (id) {
    case kCloseButtonId:
      CloseOnRequest();
      return true;
    case kEmailCheckBoxId:
      settings_.email = email_check_box_.GetCheck() == BST_CHECKED ? 1 : 0;
      return true;
    default:
      return false;
  }
}

bool ProgressDialog::Paint() {
  if (!GetUpdateRect(window_, nullptr, FALSE)) return false;
  background_.Paint(window_);
  return true;
}

void ProgressDialog::Destroy() {
  background_.Release();
  close_button_.Release();
  notice_.Release();
  title_.Release();
  web_address_.Release();
  list_.Release();
  left_worker_running_ = worker_.running();
  worker_.Close();
}

INT_PTR ProgressDialog::Handle(UINT message, WPARAM wparam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      Initialise();
      return TRUE;
    case WM_COMMAND:
      return Command(LOWORD(wparam));
    case WM_CTLCOLORLISTBOX:
      SetTextColor(reinterpret_cast<HDC>(wparam), kListTextColor);
      SetBkColor(reinterpret_cast<HDC>(wparam), kListBackgroundColor);
      return reinterpret_cast<INT_PTR>(GetStockObject(BLACK_BRUSH));
    case WM_PAINT:
      return Paint();
    case WM_DESTROY:
      Destroy();
      return TRUE;
    default:
      return FALSE;
  }
}

INT_PTR CALLBACK ProgressDialog::Procedure(HWND window, UINT message, WPARAM wparam,
                                           LPARAM lparam) {
  if (message == WM_INITDIALOG) {
    reinterpret_cast<ProgressDialog*>(lparam)->window_ = window;
    SetWindowLongPtrA(window, DWLP_USER, lparam);
  }
  auto* const dialog = reinterpret_cast<ProgressDialog*>(GetWindowLongPtrA(window, DWLP_USER));
  return dialog == nullptr ? FALSE : dialog->Handle(message, wparam, lparam);
}

}  // namespace hostscope
