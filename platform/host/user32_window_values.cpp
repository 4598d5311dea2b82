// What is kept with a window: its texts, styles, user data, and whose it is.

#include <cstring>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

using host::CallFails;
using host::LockedDesktop;
using host::WindowPointer;

namespace {

// Where the pointer-wide value of the number is kept; null for a number that has none.
void* WideValue(host::Window& window, int index) {
  switch (index) {
    case GWLP_ID:
      return &window.id;
    case GWLP_USERDATA:
      return &window.user_data;
    case GWLP_WNDPROC:
      return &window.procedure;
    case GWLP_HINSTANCE:
      return &window.instance;
    default:
      break;
  }
  if (auto* dialog = window.As<host::Dialog>()) {
    switch (index) {
      case DWLP_MSGRESULT:
        return &dialog->message_result;
      case DWLP_DLGPROC:
        return &dialog->procedure;
      case DWLP_USER:
        return &dialog->user;
      default:
        break;
    }
  }
  const bool extra =
      index >= 0 && static_cast<std::size_t>(index) + sizeof(LONG_PTR) <= window.extra_bytes.size();
  return extra ? window.extra_bytes.data() + index : nullptr;
}

DWORD* NarrowValue(host::Window& window, int index) {
  if (index == GWL_STYLE) return &window.style;
  return index == GWL_EXSTYLE ? &window.extended_style : nullptr;
}

// The value before; with a new one, sets it.
LONG_PTR Exchange(HWND handle, int index, const LONG_PTR* value) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return 0;
  LONG_PTR earlier = 0;
  if (DWORD* narrow = NarrowValue(*window, index)) {
    earlier = static_cast<LONG>(*narrow);
    if (value != nullptr) *narrow = static_cast<DWORD>(*value);
  } else if (void* wide = WideValue(*window, index)) {
    std::memcpy(&earlier, wide, sizeof(earlier));
    if (value != nullptr) std::memcpy(wide, value, sizeof(*value));
  } else {
    SetLastError(host::kInvalidIndex);
    return 0;
  }
  if (value != nullptr) desktop->Changed();
  return earlier;
}

}  // namespace

HWND GetParent(HWND handle) {
  if (CallFails("GetParent")) return nullptr;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return nullptr;
  return window->IsChildWindow() ? window->parent : window->owner;
}

BOOL IsChild(HWND parent, HWND window) {
  if (CallFails("IsChild")) return FALSE;
  const LockedDesktop desktop;
  return parent != window && desktop->IsInside(parent, window);
}

LONG_PTR GetWindowLongPtrA(HWND window, int index) {
  if (CallFails("GetWindowLongPtrA")) return 0;
  return Exchange(window, index, nullptr);
}

LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value) {
  if (CallFails("SetWindowLongPtrA")) return 0;
  return Exchange(window, index, &value);
}

int GetWindowTextA(HWND window, LPSTR text, int size) {
  if (CallFails("GetWindowTextA")) return 0;
  if (size > 0) text[0] = 0;
  return static_cast<int>(
      host::Send(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(text)));
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
  if (CallFails("SetWindowTextA")) return FALSE;
  return host::Send(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}
