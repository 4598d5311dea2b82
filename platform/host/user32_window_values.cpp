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

// The 32-bit functions cannot carry an address.
bool HoldsAddress(int index) {
  return index == GWLP_WNDPROC || index == GWLP_HINSTANCE;
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

HWND FindWindowA(LPCSTR class_name, LPCSTR title) {
  if (CallFails("FindWindowA")) return nullptr;
  const LockedDesktop desktop;
  for (const HWND handle : desktop->top_windows) {
    const WindowPointer window = desktop->Find(handle);
    if (class_name != nullptr && !host::EqualNoCase(class_name, window->window_class->name)) {
      continue;
    }
    if (title == nullptr || host::EqualNoCase(title, window->text)) return handle;
  }
  return nullptr;
}

LONG GetWindowLongA(HWND window, int index) {
  if (CallFails("GetWindowLongA")) return 0;
  if (HoldsAddress(index)) {
    SetLastError(host::kInvalidIndex);
    return 0;
  }
  return static_cast<LONG>(Exchange(window, index, nullptr));
}

LONG SetWindowLongA(HWND window, int index, LONG value) {
  if (CallFails("SetWindowLongA")) return 0;
  if (HoldsAddress(index)) {
    SetLastError(host::kInvalidIndex);
    return 0;
  }
  const LONG_PTR wide = value;
  return static_cast<LONG>(Exchange(window, index, &wide));
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

int GetWindowTextLengthA(HWND window) {
  if (CallFails("GetWindowTextLengthA")) return 0;
  return static_cast<int>(host::Send(window, WM_GETTEXTLENGTH, 0, 0));
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
  if (CallFails("SetWindowTextA")) return FALSE;
  return host::Send(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}
