// Which window is active, has the keyboard, has the mouse.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// A window takes the focus unless it or one that it stands in is disabled.
bool TakesFocus(const DesktopState& state, HWND handle) {
  for (WindowPointer window = state.Find(handle); window; window = state.Find(window->parent)) {
    if (window->Has(WS_DISABLED) || window->being_destroyed) return false;
    if (!window->IsChildWindow()) return true;
  }
  return false;
}

// The focus goes before anybody is told, and each side is told of the other.
HWND HandOverFocus(HWND handle) {
  HWND earlier = nullptr;
  {
    const LockedDesktop desktop;
    earlier = desktop->focus;
    if (earlier == handle) return earlier;
    desktop->focus = handle;
    desktop->Changed();
  }
  if (earlier != nullptr) Send(earlier, WM_KILLFOCUS, reinterpret_cast<WPARAM>(handle), 0);
  {
    const LockedDesktop desktop;
    if (desktop->focus != handle || handle == nullptr) return earlier;
  }
  Send(handle, WM_SETFOCUS, reinterpret_cast<WPARAM>(earlier), 0);
  return earlier;
}

}  // namespace

HWND MoveFocus(HWND handle) {
  HWND root = nullptr;
  if (handle != nullptr) {
    const LockedDesktop desktop;
    if (!desktop.Find(handle) || !TakesFocus(*desktop, handle)) return nullptr;
    root = desktop->RootOf(handle)->handle;
  }
  HWND before = nullptr;
  {
    const LockedDesktop desktop;
    before = desktop->focus;
  }
  if (root != nullptr) Activate(root);
  HandOverFocus(handle);
  return before;
}

void Activate(HWND handle) {
  HWND earlier = nullptr;
  {
    const LockedDesktop desktop;
    earlier = desktop->active;
    if (earlier == handle || (handle != nullptr && !desktop->Find(handle))) return;
    // Told while the focus is still where it was, so that it can be found again.
  }
  if (earlier != nullptr) {
    Send(earlier, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(handle));
  }
  {
    const LockedDesktop desktop;
    desktop->active = handle;
    std::vector<HWND>& order = desktop->top_windows;
    const auto place = std::find(order.begin(), order.end(), handle);
    if (place != order.end()) std::rotate(order.begin(), place, place + 1);
    desktop->Changed();
  }
  if (handle == nullptr) {
    HandOverFocus(nullptr);
  } else {
    Send(handle, WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(earlier));
  }
}

HWND MoveCapture(HWND handle) {
  HWND earlier = nullptr;
  {
    const LockedDesktop desktop;
    earlier = desktop->capture;
    desktop->capture = handle;
    desktop->Changed();
  }
  if (earlier != nullptr && earlier != handle) {
    Send(earlier, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(handle));
  }
  return earlier;
}

}  // namespace host

using host::CallFails;
using host::LockedDesktop;

namespace {

// Focus and capture are seen only by the thread whose window has them.
HWND IfOwn(const LockedDesktop& desktop, HWND handle) {
  const host::WindowPointer window = desktop->Find(handle);
  return window && window->queue == desktop->OwnQueue() ? handle : nullptr;
}

}  // namespace

HWND SetFocus(HWND window) {
  if (CallFails("SetFocus")) return nullptr;
  return host::MoveFocus(window);
}

HWND GetFocus() {
  if (CallFails("GetFocus")) return nullptr;
  const LockedDesktop desktop;
  return IfOwn(desktop, desktop->focus);
}

HWND SetCapture(HWND window) {
  if (CallFails("SetCapture")) return nullptr;
  {
    const LockedDesktop desktop;
    if (!desktop.Find(window)) return nullptr;
  }
  return host::MoveCapture(window);
}

HWND GetCapture() {
  if (CallFails("GetCapture")) return nullptr;
  const LockedDesktop desktop;
  return IfOwn(desktop, desktop->capture);
}

BOOL ReleaseCapture() {
  if (CallFails("ReleaseCapture")) return FALSE;
  host::MoveCapture(nullptr);
  return TRUE;
}
