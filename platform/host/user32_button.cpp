// Push buttons and check boxes.

#include "platform/host/desktop_state.h"
#include "platform/host/machine.h"

namespace host {
namespace {

struct Access {
  LockedDesktop desktop;
  WindowPointer window;
  Button* button = nullptr;

  explicit Access(HWND handle) : window(desktop->Find(handle)) {
    if (window) button = window->As<Button>();
  }
  DWORD Type() const { return window->style & BS_TYPEMASK; }
  bool IsPushButton() const { return Type() <= BS_DEFPUSHBUTTON; }
  // Sets the bits of the mask and has the button painted anew.
  void SetState(WPARAM mask, WPARAM bits) {
    const WPARAM state = (button->state & ~mask) | (bits & mask);
    if (state == button->state) return;
    button->state = state;
    desktop->Invalidate(*window, nullptr, true, false);
    desktop->Changed();
  }
};

constexpr WPARAM kCheckBits = 3;

WPARAM NextCheck(DWORD type, WPARAM check) {
  switch (type) {
    case BS_AUTOCHECKBOX:
      return check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED;
    case BS_AUTO3STATE:
      return (check + 1) % 3;
    case BS_AUTORADIOBUTTON:
      return BST_CHECKED;
    default:
      return check;
  }
}

void SetCheck(HWND handle, WPARAM check) {
  Access access(handle);
  if (access.IsPushButton()) return;
  const bool three_state = access.Type() == BS_3STATE || access.Type() == BS_AUTO3STATE;
  const WPARAM highest = three_state ? BST_INDETERMINATE : BST_CHECKED;
  access.SetState(kCheckBits, check > highest ? highest : check);
}

void TakeClick(HWND handle) {
  HWND parent = nullptr;
  WPARAM command = 0;
  {
    Access access(handle);
    if (!access.window) return;
    access.SetState(kCheckBits, NextCheck(access.Type(), access.button->state & kCheckBits));
    parent = access.window->parent;
    command = MAKEWPARAM(static_cast<WORD>(access.window->id), BN_CLICKED);
  }
  Send(parent, WM_COMMAND, command, reinterpret_cast<LPARAM>(handle));
}

bool IsPushed(HWND handle) {
  const Access access(handle);
  return access.button != nullptr && (access.button->state & BST_PUSHED) != 0;
}

void SetPushed(HWND handle, bool pushed) {
  Access access(handle);
  if (access.button != nullptr) access.SetState(BST_PUSHED, pushed ? BST_PUSHED : 0);
}

bool HasCapture(HWND handle) {
  const LockedDesktop desktop;
  return desktop->capture == handle;
}

bool IsInside(HWND handle, LPARAM point) {
  const Access access(handle);
  const RECT client = access.desktop->ClientRectangle(*access.window);
  const int x = static_cast<SHORT>(LOWORD(static_cast<ULONG_PTR>(point)));
  const int y = static_cast<SHORT>(HIWORD(static_cast<ULONG_PTR>(point)));
  return x >= 0 && y >= 0 && x < client.right && y < client.bottom;
}

void Press(HWND handle) {
  MoveCapture(handle);
  MoveFocus(handle);
  SetPushed(handle, true);
}

// The button counts as clicked when it is let go where it was pressed.
void Release(HWND handle, bool inside) {
  const bool pushed = IsPushed(handle);
  SetPushed(handle, false);
  if (HasCapture(handle)) MoveCapture(nullptr);
  if (pushed && inside) TakeClick(handle);
}

LRESULT DialogCode(HWND handle) {
  const Access access(handle);
  switch (access.Type()) {
    case BS_PUSHBUTTON:
      return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
    case BS_DEFPUSHBUTTON:
      return DLGC_BUTTON | DLGC_DEFPUSHBUTTON;
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
      return DLGC_BUTTON | DLGC_RADIOBUTTON;
    case BS_GROUPBOX:
      return DLGC_STATIC;
    default:
      return DLGC_BUTTON;
  }
}

UINT FrameState(DWORD type, WPARAM state) {
  const bool radio = type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
  UINT frame = type <= BS_DEFPUSHBUTTON ? DFCS_BUTTONPUSH
               : radio                  ? DFCS_BUTTONRADIO
                                        : DFCS_BUTTONCHECK;
  if ((state & kCheckBits) != 0) frame |= DFCS_CHECKED;
  if ((state & BST_PUSHED) != 0) frame |= DFCS_PUSHED;
  return frame;
}

void Paint(HWND handle) {
  PAINTSTRUCT paint = {};
  const HDC dc = StartPainting(handle, paint);
  if (dc == nullptr) return;
  const HBRUSH brush = AskForColors(WM_CTLCOLORBTN, handle, dc);
  RECT client = {};
  std::string text;
  HFONT font = nullptr;
  UINT frame = 0;
  {
    const Access access(handle);
    client = access.desktop->ClientRectangle(*access.window);
    text = access.window->text;
    font = access.window->font;
    frame = FrameState(access.Type(), access.button->state);
  }
  if (font != nullptr) SelectInto(dc, font);
  Fill(dc, client, brush);
  Record(dc,
         {.function = "DrawFrameControl", .rectangle = client, .kind = DFC_BUTTON, .flags = frame});
  DrawLine(dc, text, client, DT_SINGLELINE | DT_VCENTER);
  FinishPainting(paint);
}

LRESULT KeyMessage(HWND handle, UINT message, WPARAM key) {
  if (key != VK_SPACE) return 0;
  if (message == WM_KEYDOWN) {
    SetPushed(handle, true);
  } else {
    Release(handle, true);
  }
  return 0;
}

LRESULT MouseMessage(HWND handle, UINT message, LPARAM point) {
  if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
    Press(handle);
  } else if (HasCapture(handle) && message == WM_MOUSEMOVE) {
    SetPushed(handle, IsInside(handle, point));
  } else if (message == WM_LBUTTONUP) {
    Release(handle, IsInside(handle, point));
  }
  return 0;
}

LRESULT ButtonMessage(HWND handle, UINT message, WPARAM wparam) {
  switch (message) {
    case BM_GETCHECK:
      return static_cast<LRESULT>(Access(handle).button->state & kCheckBits);
    case BM_SETCHECK:
      SetCheck(handle, wparam);
      return 0;
    case BM_GETSTATE:
      return static_cast<LRESULT>(Access(handle).button->state);
    case BM_SETSTATE:
      SetPushed(handle, wparam != 0);
      return 0;
    case BM_SETSTYLE: {
      Access access(handle);
      access.window->style = (access.window->style & ~BS_TYPEMASK) | (wparam & BS_TYPEMASK);
      return 0;
    }
    default:
      Send(handle, WM_LBUTTONDOWN, 0, 0);
      Send(handle, WM_LBUTTONUP, 0, 0);
      return 0;
  }
}

// What gives or takes the focus marks the button by a bit of its state.
void MarkFocus(HWND handle, bool focus) {
  Access access(handle);
  access.SetState(BST_FOCUS, focus ? BST_FOCUS : 0);
}

}  // namespace

LRESULT ButtonProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_NCCREATE && Access(handle).button == nullptr) return 0;
  switch (message) {
    case WM_NCCREATE: {
      const LockedDesktop desktop;
      desktop->Find(handle)->data = std::make_unique<Button>();
      return TRUE;
    }
    case WM_GETDLGCODE:
      return DialogCode(handle);
    case WM_SETFONT: {
      const Access access(handle);
      access.window->font = reinterpret_cast<HFONT>(wparam);
      if (lparam != 0) access.desktop->Invalidate(*access.window, nullptr, true, false);
      return 0;
    }
    case WM_GETFONT:
      return reinterpret_cast<LRESULT>(Access(handle).window->font);
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint(handle);
      return 0;
    case WM_SETFOCUS:
      MarkFocus(handle, true);
      return 0;
    case WM_KILLFOCUS:
      MarkFocus(handle, false);
      SetPushed(handle, false);
      return 0;
    case WM_KEYDOWN:
    case WM_KEYUP:
      return KeyMessage(handle, message, wparam);
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
      return MouseMessage(handle, message, lparam);
    case WM_ENABLE:
      InvalidateWindow(handle, true);
      return 0;
    case BM_GETCHECK:
    case BM_SETCHECK:
    case BM_GETSTATE:
    case BM_SETSTATE:
    case BM_SETSTYLE:
    case BM_CLICK:
      return ButtonMessage(handle, message, wparam);
    default:
      return DefaultProcedure(handle, message, wparam, lparam);
  }
}

}  // namespace host
