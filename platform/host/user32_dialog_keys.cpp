// The keyboard in dialogs: tab order, default and cancel commands, mnemonics.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// The controls in tab order, those inside of control parents included. Locked.
void CollectControls(const DesktopState& state, HWND parent, std::vector<HWND>& controls) {
  const WindowPointer window = state.Find(parent);
  if (!window) return;
  for (const HWND child : window->children) {
    const WindowPointer control = state.Find(child);
    const bool shut = !control->Has(WS_VISIBLE) || control->Has(WS_DISABLED);
    if ((control->extended_style & WS_EX_CONTROLPARENT) == 0) {
      controls.push_back(child);
    } else if (!shut) {
      CollectControls(state, child, controls);
    }
  }
}

bool IsOpen(const Window& control) {
  return control.Has(WS_VISIBLE) && !control.Has(WS_DISABLED);
}

// The first control after the given one, round the dialog, that fits; null: there is none.
template <typename Fits>
HWND NextOf(const std::vector<HWND>& controls, HWND control, bool previous, Fits fits) {
  const int count = static_cast<int>(controls.size());
  const auto place = std::find(controls.begin(), controls.end(), control);
  const int step = previous ? -1 : 1;
  int at = place != controls.end() ? static_cast<int>(place - controls.begin())
                                   : (previous ? count : -1);
  for (int tried = 0; tried < count; ++tried) {
    at = (at + step + count) % count;
    if (fits(controls[static_cast<std::size_t>(at)])) return controls[static_cast<std::size_t>(at)];
  }
  return nullptr;
}

// The controls of the group that the control is in: from one with the group style up to the next.
std::vector<HWND> GroupOf(const DesktopState& state, const std::vector<HWND>& controls,
                          HWND control) {
  std::vector<HWND> group;
  bool found = false;
  for (const HWND each : controls) {
    if (state.Find(each)->Has(WS_GROUP)) {
      if (found) break;
      group.clear();
    }
    group.push_back(each);
    found = found || each == control;
  }
  return found ? group : std::vector<HWND>();
}

HWND NextGroupItem(HWND dialog, HWND control, bool previous) {
  const LockedDesktop desktop;
  std::vector<HWND> controls;
  CollectControls(*desktop, dialog, controls);
  return NextOf(GroupOf(*desktop, controls, control), control, previous,
                [&](HWND each) { return IsOpen(*desktop->Find(each)); });
}

// The letter after a single "&", in capitals; 0: none.
char MnemonicOf(const std::string& text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] != '&') continue;
    if (text[at + 1] != '&') return UpperCase(text[at + 1]);
    ++at;
  }
  return 0;
}

bool PressMnemonic(HWND dialog, HWND from, char letter) {
  HWND hit = nullptr;
  {
    const LockedDesktop desktop;
    std::vector<HWND> controls;
    CollectControls(*desktop, dialog, controls);
    hit = NextOf(controls, from, false, [&](HWND each) {
      const Window& control = *desktop->Find(each);
      return IsOpen(control) && MnemonicOf(control.text) == UpperCase(letter);
    });
  }
  if (hit == nullptr) return false;
  const LRESULT code = Send(hit, WM_GETDLGCODE, 0, 0);
  if ((code & DLGC_BUTTON) != 0) {
    Send(hit, BM_CLICK, 0, 0);
    return true;
  }
  if ((code & DLGC_STATIC) == 0) return false;
  MoveFocus(NextTabItem(dialog, hit, false));
  return true;
}

bool IsDisabled(HWND handle) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  return window && window->Has(WS_DISABLED);
}

void SendCommand(HWND dialog, int id, HWND control) {
  if (IsDisabled(control)) return;
  Send(dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), BN_CLICKED),
       reinterpret_cast<LPARAM>(control));
}

// Enter: the push button with the focus (which the focus makes the default one), else the dialog's
// default button, else command 1.
void SendDefaultCommand(HWND dialog, HWND focus, LRESULT code) {
  if ((code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0) {
    int id = 0;
    {
      const LockedDesktop desktop;
      id = static_cast<int>(desktop->Find(focus)->id);
    }
    SendCommand(dialog, id, focus);
    return;
  }
  const auto answer = static_cast<ULONG_PTR>(Send(dialog, DM_GETDEFID, 0, 0));
  const int id = HIWORD(answer) == DC_HASDEFID ? LOWORD(answer) : IDOK;
  SendCommand(dialog, id, ControlOf(dialog, id));
}

bool DialogKey(HWND dialog, const MSG& message, LRESULT code) {
  switch (message.wParam) {
    case VK_TAB: {
      if ((code & DLGC_WANTTAB) != 0) return false;
      bool back = false;
      {
        const LockedDesktop desktop;
        back = desktop->OwnQueue()->shift_down;
      }
      Send(dialog, WM_NEXTDLGCTL, back, FALSE);
      return true;
    }
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN: {
      if ((code & DLGC_WANTARROWS) != 0) return false;
      const bool back = message.wParam == VK_LEFT || message.wParam == VK_UP;
      const HWND next = NextGroupItem(dialog, message.hwnd, back);
      if (next != nullptr) Send(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
      return true;
    }
    case VK_ESCAPE:
    case VK_CANCEL:
      SendCommand(dialog, IDCANCEL, ControlOf(dialog, IDCANCEL));
      return true;
    case VK_RETURN:
      SendDefaultCommand(dialog, message.hwnd, code);
      return true;
    default:
      return false;
  }
}

bool DialogCharacter(HWND dialog, const MSG& message, LRESULT code) {
  const bool wanted = message.message == WM_CHAR && (code & DLGC_WANTCHARS) != 0;
  if (wanted || message.wParam <= VK_SPACE) return false;
  return PressMnemonic(dialog, message.hwnd, static_cast<char>(message.wParam));
}

}  // namespace

HWND NextTabItem(HWND dialog, HWND control, bool previous) {
  const LockedDesktop desktop;
  std::vector<HWND> controls;
  CollectControls(*desktop, dialog, controls);
  return NextOf(controls, control, previous, [&](HWND each) {
    const Window& found = *desktop->Find(each);
    return found.Has(WS_TABSTOP) && IsOpen(found);
  });
}

bool DialogMessage(HWND dialog, const MSG& message) {
  {
    const LockedDesktop desktop;
    if (!desktop->IsInside(dialog, message.hwnd)) return false;
  }
  const bool key = message.message == WM_KEYDOWN;
  const bool character = message.message == WM_CHAR || message.message == WM_SYSCHAR;
  if (key || character) {
    const LRESULT code =
        Send(message.hwnd, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message));
    const bool taken =
        (code & DLGC_WANTMESSAGE) == 0 &&
        (key ? DialogKey(dialog, message, code) : DialogCharacter(dialog, message, code));
    if (taken) return true;
  }
  Translate(message);
  Deliver(message);
  return true;
}

}  // namespace host

using host::CallFails;
