// Where windows are: rectangles on the screen and in each other, frames.

#include "platform/host/desktop_state.h"
#include "platform/host/machine.h"

namespace host {

RECT FrameWidths(DWORD style, DWORD extended_style) {
  RECT frame = {};
  const auto widen = [&frame](int width) {
    frame = {frame.left + width, frame.top + width, frame.right + width, frame.bottom + width};
  };
  const bool caption = (style & WS_CAPTION) == WS_CAPTION;
  if (caption || (style & WS_DLGFRAME) != 0) {
    widen(SystemMetric(SM_CXDLGFRAME));
  } else if ((style & WS_BORDER) != 0) {
    widen(SystemMetric(SM_CXBORDER));
  }
  if ((extended_style & WS_EX_CLIENTEDGE) != 0) widen(SystemMetric(SM_CXEDGE));
  if (caption) frame.top += SystemMetric(SM_CYCAPTION);
  return frame;
}

}  // namespace host

using host::CallFails;
using host::LockedDesktop;
using host::WindowPointer;

namespace {

// Has the window, found on the locked desktop, answer; FALSE for what is no window.
template <typename Answer>
BOOL AskWindow(const char* function, HWND handle, const Answer& answer) {
  if (CallFails(function)) return FALSE;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return FALSE;
  answer(desktop, *window);
  return TRUE;
}

}  // namespace

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL repaint) {
  if (CallFails("MoveWindow")) return FALSE;
  RECT client = {};
  bool moved = false;
  bool sized = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window) return FALSE;
    const RECT place = window->rectangle;
    moved = place.left != x || place.top != y;
    sized = place.right - place.left != width || place.bottom - place.top != height;
    window->rectangle = {x, y, x + width, y + height};
    client = desktop->ClientRectangle(*window);
    const WindowPointer parent = desktop->Find(window->parent);
    if (repaint && parent) desktop->Invalidate(*parent, &place, true, false);
    if (repaint) desktop->Invalidate(*window, nullptr, true, true);
    desktop->Changed();
  }
  if (moved) host::Send(handle, WM_MOVE, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
  if (sized) {
    host::Send(handle, WM_SIZE, 0,
               MAKELPARAM(static_cast<WORD>(client.right), static_cast<WORD>(client.bottom)));
  }
  return TRUE;
}

BOOL GetClientRect(HWND handle, LPRECT rectangle) {
  return AskWindow("GetClientRect", handle, [&](const auto& desktop, const auto& window) {
    *rectangle = desktop->ClientRectangle(window);
  });
}

BOOL GetWindowRect(HWND handle, LPRECT rectangle) {
  return AskWindow("GetWindowRect", handle, [&](const auto& desktop, const auto& window) {
    *rectangle = desktop->ScreenRectangle(window);
  });
}
