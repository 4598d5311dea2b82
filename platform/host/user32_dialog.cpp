// Modal dialogs: made from a template, run until they are ended.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// Average width and height of the letters of a dialog's font: what dialog units are fractions of.
SIZE BaseUnits(const DialogTemplate& dialog) {
  const bool usual = EqualNoCase(dialog.font_face, "MS Sans Serif") && dialog.font_points == 8;
  return usual ? SIZE{6, 13} : SIZE{8, 16};
}

// Rounded to the nearest, halves away from zero, as MulDiv does.
int Scaled(int value, int numerator, int denominator) {
  const int product = value * numerator;
  const int half = product < 0 ? -denominator / 2 : denominator / 2;
  return (product + half) / denominator;
}

template <typename Placed>
RECT PixelRectangle(const Placed& placed, SIZE units) {
  const int x = Scaled(placed.x, units.cx, 4);
  const int y = Scaled(placed.y, units.cy, 8);
  return {x, y, x + Scaled(placed.width, units.cx, 4), y + Scaled(placed.height, units.cy, 8)};
}

HFONT MakeDialogFont(const DialogTemplate& dialog) {
  LOGFONTA record = {};
  record.lfHeight = -Scaled(dialog.font_points, 96, 72);
  record.lfWeight = FW_NORMAL;
  record.lfCharSet = static_cast<BYTE>(DEFAULT_CHARSET);
  CopyOut(dialog.font_face, record.lfFaceName, LF_FACESIZE);
  return OpenFont(record, "dialog font");
}

HWND MakeDialog(const DialogTemplate& dialog, HWND owner, HINSTANCE instance, DLGPROC procedure) {
  WindowPlan plan;
  plan.window_class = "#32770";
  plan.text = dialog.caption;
  plan.style = dialog.style & ~WS_VISIBLE;
  plan.extended_style = dialog.extended_style;
  const RECT client = PixelRectangle(dialog, BaseUnits(dialog));
  const RECT frame = FrameWidths(dialog.style, dialog.extended_style);
  plan.rectangle = {client.left, client.top, client.right + frame.left + frame.right,
                    client.bottom + frame.top + frame.bottom};
  plan.parent = owner;
  plan.instance = instance;
  plan.font = MakeDialogFont(dialog);
  auto data = std::make_unique<Dialog>();
  data->procedure = procedure;
  plan.data = std::move(data);
  return MakeWindow(std::move(plan));
}

bool MakeItems(HWND dialog_window, const DialogTemplate& dialog, HINSTANCE instance) {
  HFONT font = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(dialog_window);
    if (!window) return false;
    font = window->font;
  }
  for (const DialogItem& item : dialog.items) {
    WindowPlan plan;
    plan.window_class = item.window_class;
    plan.text = item.text;
    plan.style = item.style;
    plan.extended_style = item.extended_style;
    plan.rectangle = PixelRectangle(item, BaseUnits(dialog));
    plan.parent = dialog_window;
    plan.id = item.id;
    plan.instance = instance;
    const HWND control = MakeWindow(std::move(plan));
    if (control == nullptr) return false;
    Send(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  return true;
}

bool HasEnded(HWND dialog) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(dialog);
  return !window || window->As<Dialog>()->ended;
}

// The dialog is shown when it is asked for a message the first time and there is none.
Retrieved NextMessage(HWND dialog, bool& shown, MSG& message) {
  if (!shown) {
    const Retrieved retrieved = Retrieve(message, {}, kAtOnce);
    if (retrieved != Retrieved::kNothing || HasEnded(dialog)) return retrieved;
    shown = true;
    Show(dialog, true);
  }
  return Retrieve(message, {}, {});
}

void RunLoop(HWND dialog) {
  bool shown = false;
  MSG message = {};
  while (!HasEnded(dialog)) {
    const Retrieved retrieved = NextMessage(dialog, shown, message);
    if (retrieved == Retrieved::kNothing) continue;
    if (retrieved == Retrieved::kGivenUp) return;
    if (retrieved == Retrieved::kQuit) {
      // For the outer loops too.
      const LockedDesktop desktop;
      desktop->OwnQueue()->quit_code = static_cast<int>(message.wParam);
      return;
    }
    if (DialogMessage(dialog, message)) continue;
    Translate(message);
    Deliver(message);
  }
}

INT_PTR RunDialog(const DialogTemplate& dialog, HINSTANCE instance, HWND owner, DLGPROC procedure,
                  LPARAM parameter) {
  const ModalLoop loop;
  const HWND window = MakeDialog(dialog, owner, instance, procedure);
  if (window == nullptr) return -1;
  if (!MakeItems(window, dialog, instance)) {
    RemoveWindow(window);
    return -1;
  }
  const HWND first = NextTabItem(window, nullptr, false);
  if (Send(window, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter) != 0 &&
      !HasEnded(window)) {
    // Asked for again: the procedure may have disabled the first one.
    MoveFocus(NextTabItem(window, nullptr, false));
  }
  if (owner != nullptr) Enable(owner, false);
  RunLoop(window);
  INT_PTR result = -1;
  {
    const LockedDesktop desktop;
    const WindowPointer found = desktop->Find(window);
    if (found && found->As<Dialog>()->ended) result = found->As<Dialog>()->result;
  }
  if (owner != nullptr) Enable(owner, true);
  RemoveWindow(window);
  return result;
}

HWND SavedFocus(HWND dialog) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(dialog);
  const HWND saved = window->As<Dialog>()->saved_focus;
  return saved != nullptr && desktop->IsInside(dialog, saved) ? saved : nullptr;
}

void KeepFocus(HWND dialog) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(dialog);
  const bool inside = desktop->focus != dialog && desktop->IsInside(dialog, desktop->focus);
  if (inside) window->As<Dialog>()->saved_focus = desktop->focus;
}

LRESULT EraseDialog(HWND dialog, WPARAM dc) {
  DLGPROC procedure = nullptr;
  RECT client = {};
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(dialog);
    procedure = window->As<Dialog>()->procedure;
    client = desktop->ClientRectangle(*window);
  }
  const auto handle = reinterpret_cast<LPARAM>(dialog);
  INT_PTR brush = procedure != nullptr ? procedure(dialog, WM_CTLCOLORDLG, dc, handle) : 0;
  if (brush == 0) brush = DefaultProcedure(dialog, WM_CTLCOLORDLG, dc, handle);
  Fill(reinterpret_cast<HDC>(dc), client, reinterpret_cast<HBRUSH>(brush));
  return 1;
}

void CloseByBox(HWND dialog) {
  const HWND cancel = ControlOf(dialog, IDCANCEL);
  {
    const LockedDesktop desktop;
    const WindowPointer button = desktop->Find(cancel);
    if (button && button->Has(WS_DISABLED)) return;
  }
  Post(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel));
}

LRESULT DefaultId(HWND dialog, UINT message, WPARAM wparam) {
  const LockedDesktop desktop;
  auto* const data = desktop->Find(dialog)->As<Dialog>();
  if (message == DM_SETDEFID) {
    data->default_id = LOWORD(wparam);
    return TRUE;
  }
  return data->default_id != 0 ? MAKELONG(data->default_id, DC_HASDEFID) : 0;
}

// What the dialog box itself does with messages that its procedure leaves alone.
LRESULT DefaultDialogMessage(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_ERASEBKGND:
      return EraseDialog(dialog, wparam);
    case WM_SHOWWINDOW:
      if (wparam == FALSE) KeepFocus(dialog);
      return 0;
    case WM_ACTIVATE:
      if (LOWORD(wparam) == WA_INACTIVE) {
        KeepFocus(dialog);
      } else if (const HWND saved = SavedFocus(dialog)) {
        MoveFocus(saved);
      }
      return 0;
    case WM_SETFOCUS: {
      const HWND saved = SavedFocus(dialog);
      MoveFocus(saved != nullptr ? saved : NextTabItem(dialog, nullptr, false));
      return 0;
    }
    case WM_NEXTDLGCTL: {
      HWND current = nullptr;
      {
        const LockedDesktop desktop;
        current = desktop->focus;
      }
      MoveFocus(LOWORD(static_cast<ULONG_PTR>(lparam)) != 0
                    ? reinterpret_cast<HWND>(wparam)
                    : NextTabItem(dialog, current, wparam != 0));
      return 0;
    }
    case WM_GETFONT: {
      const LockedDesktop desktop;
      return reinterpret_cast<LRESULT>(desktop->Find(dialog)->font);
    }
    case WM_NCDESTROY: {
      const LockedDesktop desktop;
      CurrentMachine().handles.Close(reinterpret_cast<std::uintptr_t>(desktop->Find(dialog)->font));
      return 0;
    }
    case WM_CLOSE:
      CloseByBox(dialog);
      return 0;
    case DM_GETDEFID:
    case DM_SETDEFID:
      return DefaultId(dialog, message, wparam);
    default:
      return DefaultProcedure(dialog, message, wparam, lparam);
  }
}

// Messages whose answer is what the dialog procedure returns; for the others that only says whether
// it has dealt with the message.
bool AnswersItself(UINT message) {
  return message == WM_INITDIALOG || message == WM_CTLCOLORLISTBOX || message == WM_CTLCOLORBTN ||
         message == WM_CTLCOLORDLG || message == WM_CTLCOLORSTATIC;
}

}  // namespace

bool IsDialog(HWND handle) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  return window && window->As<Dialog>() != nullptr;
}

HWND ControlOf(HWND dialog, int id) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(dialog);
  if (!window) return nullptr;
  for (const HWND child : window->children) {
    if (desktop->Find(child)->id == id) return child;
  }
  return nullptr;
}

bool EndTheDialog(HWND dialog, INT_PTR result) {
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(dialog);
    auto* const data = window ? window->As<Dialog>() : nullptr;
    if (data == nullptr) return false;
    data->ended = true;
    data->result = result;
    desktop->Changed();
  }
  Show(dialog, false);
  // Its loop may be waiting, when another thread has sent what led here.
  Post(dialog, WM_NULL, 0, 0);
  return true;
}

LRESULT DialogProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  DLGPROC procedure = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    auto* const data = window ? window->As<Dialog>() : nullptr;
    // Of the dialog class, but made as an ordinary window.
    if (data != nullptr) {
      data->message_result = 0;
      procedure = data->procedure;
    }
  }
  if (!IsDialog(handle)) return DefaultProcedure(handle, message, wparam, lparam);
  // The dialog procedure hears nothing before there is a dialog to speak of.
  const bool ready = message != WM_NCCREATE && message != WM_CREATE;
  const INT_PTR answer =
      ready && procedure != nullptr ? procedure(handle, message, wparam, lparam) : 0;
  if (AnswersItself(message) || !IsDialog(handle)) return answer;
  if (answer == 0) return DefaultDialogMessage(handle, message, wparam, lparam);
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  return window ? window->As<Dialog>()->message_result : 0;
}

}  // namespace host

using host::CallFails;
using host::LockedDesktop;
using host::WindowPointer;

INT_PTR DialogBoxParamA(HINSTANCE instance, LPCSTR dialog, HWND owner, DLGPROC procedure,
                        LPARAM parameter) {
  if (host::EndableCallFails("DialogBoxParamA")) return -1;
  const auto& dialogs = host::CurrentMachine().desktop.dialogs;
  const auto found = dialogs.find(static_cast<int>(reinterpret_cast<ULONG_PTR>(dialog)));
  if (found == dialogs.end()) {
    SetLastError(host::kNoSuchResourceName);
    return -1;
  }
  if (owner != nullptr) {
    const LockedDesktop desktop;
    if (!desktop.Find(owner)) return 0;
  }
  return host::RunDialog(found->second, instance, owner, procedure, parameter);
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
  if (CallFails("EndDialog")) return FALSE;
  return host::EndTheDialog(dialog, result);
}

HWND GetDlgItem(HWND dialog, int id) {
  if (CallFails("GetDlgItem")) return nullptr;
  {
    const LockedDesktop desktop;
    if (!desktop.Find(dialog)) return nullptr;
  }
  const HWND control = host::ControlOf(dialog, id);
  if (control == nullptr) SetLastError(host::kNoSuchControl);
  return control;
}

int GetDlgCtrlID(HWND handle) {
  if (CallFails("GetDlgCtrlID")) return 0;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  return window ? static_cast<int>(window->id) : 0;
}

LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
  if (CallFails("SendDlgItemMessageA")) return 0;
  return host::Send(host::ControlOf(dialog, id), message, wparam, lparam);
}
