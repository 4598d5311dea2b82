// Window classes. The program is a single module, so a class is found by its name alone.

#include <cstring>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/libraries.h"
#include "platform/host/machine.h"

namespace host {
namespace {

void AddClass(DesktopState& state, const WNDCLASSEXA& record) {
  auto added = std::make_shared<WindowClass>();
  added->name = record.lpszClassName;
  added->record = record;
  added->record.lpszClassName = added->name.c_str();
  state.classes[added->name] = added;
}

ATOM Register(const WNDCLASSEXA& record) {
  if (record.lpszClassName == nullptr || record.lpfnWndProc == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const LockedDesktop desktop;
  if (desktop->classes.contains(std::string(record.lpszClassName))) {
    SetLastError(kClassAlreadyThere);
    return 0;
  }
  AddClass(*desktop, record);
  return static_cast<ATOM>(0xC000 + desktop->classes.size());
}

std::shared_ptr<WindowClass> FindClass(LPCSTR name) {
  const LockedDesktop desktop;
  const auto found = desktop->classes.find(std::string(name != nullptr ? name : ""));
  if (found != desktop->classes.end()) return found->second;
  SetLastError(kClassNotThere);
  return nullptr;
}

WNDCLASSEXA Extended(const WNDCLASSA& record) {
  return {sizeof(WNDCLASSEXA),  record.style,        record.lpfnWndProc,   record.cbClsExtra,
          record.cbWndExtra,    record.hInstance,    record.hIcon,         record.hCursor,
          record.hbrBackground, record.lpszMenuName, record.lpszClassName, nullptr};
}

// What a class value of SetClassLongPtrA stands for, read and written as a number.
class ClassValue {
 public:
  ClassValue(WNDCLASSEXA& record, int index) {
    switch (index) {
      case GCLP_HICON:
        Bind(record.hIcon);
        break;
      case GCLP_HICONSM:
        Bind(record.hIconSm);
        break;
      case GCLP_HCURSOR:
        Bind(record.hCursor);
        break;
      case GCLP_HBRBACKGROUND:
        Bind(record.hbrBackground);
        break;
      case GCLP_HMODULE:
        Bind(record.hInstance);
        break;
      case GCLP_WNDPROC:
        Bind(record.lpfnWndProc);
        break;
      default:
        break;
    }
  }
  bool known() const { return place_ != nullptr; }
  ULONG_PTR value() const {
    ULONG_PTR number = 0;
    std::memcpy(&number, place_, sizeof(number));
    return number;
  }
  void set(LONG_PTR number) { std::memcpy(place_, &number, sizeof(number)); }

 private:
  template <typename Member>
  void Bind(Member& member) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): of a pointer among the members the pointer's size
    static_assert(sizeof(Member) == sizeof(ULONG_PTR));
    place_ = &member;
  }
  void* place_ = nullptr;
};

ULONG_PTR ExchangeClassValue(HWND handle, int index, const LONG_PTR* value) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return 0;
  ClassValue member(window->window_class->record, index);
  if (!member.known()) {
    SetLastError(kInvalidIndex);
    return 0;
  }
  const ULONG_PTR earlier = member.value();
  if (value != nullptr) member.set(*value);
  return earlier;
}

}  // namespace

void AddSystemClasses(DesktopState& state) {
  const auto add = [&state](LPCSTR name, WNDPROC procedure, int background) {
    WNDCLASSEXA record = {};
    record.cbSize = sizeof(record);
    record.lpfnWndProc = procedure;
    record.lpszClassName = name;
    record.hCursor = reinterpret_cast<HCURSOR>(kSystemArrow);
    record.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<std::uintptr_t>(background));
    AddClass(state, record);
  };
  add("#32770", DialogProcedure, COLOR_BTNFACE + 1);
  add("LISTBOX", ListBoxProcedure, 0);
  add("BUTTON", ButtonProcedure, 0);
  add("STATIC", StaticProcedure, 0);
}

// What is bound at run time, since the oldest Windows lacks it.
const LayerLibrary kUser32({.name = "USER32.DLL",
                            .loaded_at_start = true,
                            .exports = {HOST_EXPORT(GetClassInfoExA),
                                        HOST_EXPORT(RegisterClassExA)}});

LRESULT StaticProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_GETDLGCODE) return DLGC_STATIC;
  return DefaultProcedure(window, message, wparam, lparam);
}

}  // namespace host

using host::CallFails;

ATOM RegisterClassA(const WNDCLASSA* window_class) {
  if (CallFails("RegisterClassA")) return 0;
  return host::Register(host::Extended(*window_class));
}

ATOM RegisterClassExA(const WNDCLASSEXA* window_class) {
  if (CallFails("RegisterClassExA")) return 0;
  if (window_class->cbSize != sizeof(WNDCLASSEXA)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  return host::Register(*window_class);
}

BOOL GetClassInfoA(HINSTANCE, LPCSTR name, LPWNDCLASSA window_class) {
  if (CallFails("GetClassInfoA")) return FALSE;
  const auto found = host::FindClass(name);
  if (!found) return FALSE;
  const WNDCLASSEXA& record = found->record;
  *window_class = {
      record.style, record.lpfnWndProc, record.cbClsExtra,    record.cbWndExtra,   record.hInstance,
      record.hIcon, record.hCursor,     record.hbrBackground, record.lpszMenuName, name};
  return TRUE;
}

BOOL GetClassInfoExA(HINSTANCE, LPCSTR name, LPWNDCLASSEXA window_class) {
  if (CallFails("GetClassInfoExA")) return FALSE;
  const auto found = host::FindClass(name);
  if (!found) return FALSE;
  *window_class = found->record;
  window_class->lpszClassName = name;
  return TRUE;
}

ULONG_PTR GetClassLongPtrA(HWND window, int index) {
  if (CallFails("GetClassLongPtrA")) return 0;
  return host::ExchangeClassValue(window, index, nullptr);
}

ULONG_PTR SetClassLongPtrA(HWND window, int index, LONG_PTR value) {
  if (CallFails("SetClassLongPtrA")) return 0;
  return host::ExchangeClassValue(window, index, &value);
}
