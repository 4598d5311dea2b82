// Windows: making and removing, showing and enabling.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

void Forget(std::vector<HWND>& list, HWND window) {
  list.erase(std::remove(list.begin(), list.end(), window), list.end());
}

// The new window, linked in; not yet told that it exists. Locked.
WindowPointer Link(DesktopState& state, WindowPlan& plan, std::shared_ptr<WindowClass> its_class) {
  auto window = std::make_shared<Window>();
  window->handle = reinterpret_cast<HWND>(CurrentMachine().handles.Open(window));
  window->queue = state.OwnQueue();
  window->window_class = std::move(its_class);
  window->style = plan.style & ~WS_VISIBLE;
  window->extended_style = plan.extended_style;
  window->id = plan.id;
  window->instance = plan.instance;
  window->procedure =
      plan.procedure != nullptr ? plan.procedure : window->window_class->record.lpfnWndProc;
  window->extra_bytes.resize(
      static_cast<std::size_t>(std::max(0, window->window_class->record.cbWndExtra)));
  window->text = plan.text;
  window->rectangle = plan.rectangle;
  window->font = plan.font;
  window->data = std::move(plan.data);
  state.windows[window->handle] = window;
  if (window->IsChildWindow()) {
    window->parent = plan.parent;
    state.Find(plan.parent)->children.push_back(window->handle);
  } else {
    const WindowPointer owner = state.RootOf(plan.parent);
    window->owner = owner ? owner->handle : nullptr;
    state.top_windows.insert(state.top_windows.begin(), window->handle);
  }
  state.Changed();
  return window;
}

void Unlink(HWND handle) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  if (!window) return;
  const WindowPointer parent = desktop->Find(window->parent);
  Forget(parent ? parent->children : desktop->top_windows, handle);
  if (desktop->focus == handle) desktop->focus = nullptr;
  if (desktop->capture == handle) desktop->capture = nullptr;
  if (desktop->active == handle) desktop->active = nullptr;
  std::deque<std::shared_ptr<SentMessage>> kept;
  for (const auto& sent : window->queue->sent) {
    if (sent->window == handle) {
      sent->done = true;
    } else {
      kept.push_back(sent);
    }
  }
  window->queue->sent = std::move(kept);
  std::erase_if(window->queue->posted,
                [handle](const MSG& posted) { return posted.hwnd == handle; });
  desktop->windows.erase(handle);
  CurrentMachine().handles.Close(reinterpret_cast<std::uintptr_t>(handle));
  desktop->Changed();
}

std::vector<HWND> ChildrenOf(HWND handle) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  return window ? window->children : std::vector<HWND>();
}

// The window hears of its end before its children do.
void SendDestroy(HWND window) {
  Send(window, WM_DESTROY, 0, 0);
  for (const HWND child : ChildrenOf(window))
    SendDestroy(child);
}

void UnlinkTree(HWND window) {
  for (const HWND child : ChildrenOf(window))
    UnlinkTree(child);
  Send(window, WM_NCDESTROY, 0, 0);
  Unlink(window);
}

CREATESTRUCTA CreationRecord(const WindowPlan& plan) {
  const RECT& place = plan.rectangle;
  return {plan.creation_data,
          plan.instance,
          reinterpret_cast<HMENU>(plan.id),
          plan.parent,
          place.bottom - place.top,
          place.right - place.left,
          place.top,
          place.left,
          static_cast<LONG>(plan.style),
          plan.text.c_str(),
          plan.window_class.c_str(),
          plan.extended_style};
}

// Who gets to be active when the window goes: its owner, else the topmost other visible one.
HWND Successor(HWND gone) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(gone);
  if (window && desktop->Find(window->owner)) return window->owner;
  for (const HWND candidate : desktop->top_windows) {
    const WindowPointer other = desktop->Find(candidate);
    if (candidate != gone && other->Has(WS_VISIBLE) && !other->Has(WS_DISABLED)) return candidate;
  }
  return nullptr;
}

}  // namespace

HWND MakeWindow(WindowPlan plan) {
  WindowPointer window;
  {
    const LockedDesktop desktop;
    const auto its_class = desktop->classes.find(plan.window_class);
    if (its_class == desktop->classes.end()) {
      SetLastError(kNoSuchWindowClass);
      return nullptr;
    }
    const bool child = (plan.style & (WS_CHILD | WS_POPUP)) == WS_CHILD;
    if (child && plan.parent == nullptr) {
      SetLastError(kNoParent);
      return nullptr;
    }
    if (plan.parent != nullptr && !desktop.Find(plan.parent)) return nullptr;
    window = Link(*desktop, plan, its_class->second);
  }
  const HWND handle = window->handle;
  CREATESTRUCTA record = CreationRecord(plan);
  const LPARAM creation = reinterpret_cast<LPARAM>(&record);
  const bool made =
      Send(handle, WM_NCCREATE, 0, creation) != 0 && Send(handle, WM_CREATE, 0, creation) != -1;
  if (!made) {
    RemoveWindow(handle);
    return nullptr;
  }
  if ((plan.style & WS_VISIBLE) != 0) Show(handle, true);
  return handle;
}

bool RemoveWindow(HWND handle) {
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window) return false;
    if (window->queue != desktop->OwnQueue()) {
      SetLastError(ERROR_ACCESS_DENIED);
      return false;
    }
    if (window->being_destroyed) return true;
    window->being_destroyed = true;
  }
  Show(handle, false);
  SendDestroy(handle);
  UnlinkTree(handle);
  return true;
}

void Show(HWND handle, bool show) {
  bool top = false;
  bool loses_active = false;
  bool loses_focus = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window || window->Has(WS_VISIBLE) == show) return;
    top = !window->IsChildWindow();
    if (show) {
      window->style |= WS_VISIBLE;
      desktop->Invalidate(*window, nullptr, true, true);
    } else {
      window->style &= ~WS_VISIBLE;
      const WindowPointer parent = desktop->Find(window->parent);
      if (parent) desktop->Invalidate(*parent, &window->rectangle, true, false);
      loses_active = desktop->active == handle;
      loses_focus = !top && desktop->focus != nullptr && desktop->IsInside(handle, desktop->focus);
    }
    desktop->Changed();
  }
  Send(handle, WM_SHOWWINDOW, show ? TRUE : FALSE, 0);
  if (show && top) Activate(handle);
  if (loses_active) Activate(Successor(handle));
  if (loses_focus) MoveFocus(nullptr);
}

void Enable(HWND handle, bool enable) {
  bool loses_focus = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    if (!window || window->Has(WS_DISABLED) == !enable) return;
    window->style ^= WS_DISABLED;
    loses_focus = !enable && desktop->focus == handle;
    desktop->Changed();
  }
  if (loses_focus) MoveFocus(nullptr);
  Send(handle, WM_ENABLE, enable ? TRUE : FALSE, 0);
}

}  // namespace host

using host::CallFails;
using host::LockedDesktop;
using host::WindowPointer;

HWND CreateWindowExA(DWORD extended_style, LPCSTR class_name, LPCSTR title, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu_or_id,
                     HINSTANCE instance, LPVOID creation_data) {
  if (CallFails("CreateWindowExA")) return nullptr;
  const auto given = [](int value) { return value == CW_USEDEFAULT ? 0 : value; };
  host::WindowPlan plan;
  plan.window_class = class_name != nullptr ? class_name : "";
  plan.text = title != nullptr ? title : "";
  plan.style = style;
  plan.extended_style = extended_style;
  plan.rectangle = {given(x), given(y), given(x) + given(width), given(y) + given(height)};
  plan.parent = parent;
  plan.id = reinterpret_cast<LONG_PTR>(menu_or_id);
  plan.instance = instance;
  plan.creation_data = creation_data;
  return host::MakeWindow(std::move(plan));
}

BOOL DestroyWindow(HWND window) {
  if (CallFails("DestroyWindow")) return FALSE;
  return host::RemoveWindow(window);
}

BOOL IsWindow(HWND window) {
  if (CallFails("IsWindow")) return FALSE;
  const LockedDesktop desktop;
  return desktop->Find(window) != nullptr;
}

BOOL IsWindowEnabled(HWND handle) {
  if (CallFails("IsWindowEnabled")) return FALSE;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  return window && !window->Has(WS_DISABLED);
}

BOOL EnableWindow(HWND handle, BOOL enable) {
  if (CallFails("EnableWindow")) return FALSE;
  bool was_disabled = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window) return FALSE;
    was_disabled = window->Has(WS_DISABLED);
  }
  host::Enable(handle, enable != FALSE);
  return was_disabled;
}

BOOL ShowWindow(HWND handle, int command) {
  if (CallFails("ShowWindow")) return FALSE;
  bool was_visible = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window) return FALSE;
    was_visible = window->Has(WS_VISIBLE);
  }
  host::Show(handle, command != SW_HIDE);
  return was_visible;
}
