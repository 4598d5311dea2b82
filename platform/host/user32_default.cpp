// What a window does with a message that its own procedure leaves alone.

#include "platform/host/desktop_state.h"
#include "platform/host/machine.h"

namespace host {
namespace {

HBRUSH DefaultColors(HDC dc, int background) {
  const auto found = FindDc(dc);
  if (found) {
    found->text_color = SystemColor(COLOR_WINDOWTEXT);
    found->background_color = SystemColor(background);
  }
  return reinterpret_cast<HBRUSH>(kSystemColorBrushes + static_cast<std::uintptr_t>(background));
}

LRESULT SetText(HWND handle, LPARAM text) {
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    if (!window) return FALSE;
    window->text = text != 0 ? reinterpret_cast<LPCSTR>(text) : "";
    desktop->Changed();
  }
  return TRUE;
}

LRESULT EraseBackground(HWND handle, HDC dc) {
  HBRUSH brush = nullptr;
  RECT client = {};
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    if (!window) return 0;
    brush = window->window_class->record.hbrBackground;
    client = desktop->ClientRectangle(*window);
  }
  if (brush == nullptr) return 0;
  Fill(dc, client, brush);
  return 1;
}

}  // namespace

LRESULT DefaultProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_NCCREATE:
      return TRUE;
    case WM_SETTEXT:
      return SetText(window, lparam);
    case WM_GETTEXT: {
      const LockedDesktop desktop;
      const WindowPointer found = desktop->Find(window);
      return CopyOut(found->text, reinterpret_cast<LPSTR>(lparam), static_cast<int>(wparam));
    }
    case WM_GETTEXTLENGTH: {
      const LockedDesktop desktop;
      return static_cast<LRESULT>(desktop->Find(window)->text.size());
    }
    case WM_PAINT: {
      PAINTSTRUCT paint = {};
      if (StartPainting(window, paint) != nullptr) FinishPainting(paint);
      return 0;
    }
    case WM_ERASEBKGND:
      return EraseBackground(window, reinterpret_cast<HDC>(wparam));
    case WM_CTLCOLORLISTBOX:
      return reinterpret_cast<LRESULT>(DefaultColors(reinterpret_cast<HDC>(wparam), COLOR_WINDOW));
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
      return reinterpret_cast<LRESULT>(DefaultColors(reinterpret_cast<HDC>(wparam), COLOR_BTNFACE));
    case WM_ACTIVATE:
      if (LOWORD(wparam) != WA_INACTIVE) MoveFocus(window);
      return 0;
    case WM_SYSCOMMAND:
      if ((wparam & 0xFFF0) == SC_CLOSE) Send(window, WM_CLOSE, 0, 0);
      return 0;
    case WM_CLOSE:
      RemoveWindow(window);
      return 0;
    default:
      return 0;
  }
}

}  // namespace host
