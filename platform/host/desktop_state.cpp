#include "platform/host/desktop_state.h"

#include <algorithm>

#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// Tells the desktops that a thread has worked on when the thread ends.
class ThreadPresence {
 public:
  void Add(std::weak_ptr<DesktopState> state) { states_.push_back(std::move(state)); }

  ~ThreadPresence() {
    for (const auto& weak : states_) {
      const auto state = weak.lock();
      if (!state) continue;
      const std::lock_guard lock(state->mutex);
      Leave(*state);
    }
  }

 private:
  static void Leave(DesktopState& state) {
    const auto found = state.queues.find(std::this_thread::get_id());
    if (found != state.queues.end()) {
      found->second->thread_ended = true;
      for (const auto& sent : found->second->sent)
        sent->done = true;
      state.queues.erase(found);
    }
    state.senders.erase(std::this_thread::get_id());
    state.Changed();
  }

  std::vector<std::weak_ptr<DesktopState>> states_;
};

thread_local ThreadPresence presence;

bool Contains(const RECT& rectangle, POINT point) {
  return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
         point.y < rectangle.bottom;
}

RECT Moved(RECT rectangle, LONG x, LONG y) {
  return {rectangle.left + x, rectangle.top + y, rectangle.right + x, rectangle.bottom + y};
}

bool IsEmpty(const RECT& rectangle) {
  return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom;
}

RECT Common(const RECT& one, const RECT& other) {
  return {std::max(one.left, other.left), std::max(one.top, other.top),
          std::min(one.right, other.right), std::min(one.bottom, other.bottom)};
}

RECT Around(const RECT& one, const RECT& other) {
  return {std::min(one.left, other.left), std::min(one.top, other.top),
          std::max(one.right, other.right), std::max(one.bottom, other.bottom)};
}

}  // namespace

DesktopState& CurrentDesktop() {
  return CurrentMachine().desktop.state();
}

int CopyOut(std::string_view text, LPSTR buffer, int size) {
  if (buffer == nullptr || size <= 0) return 0;
  const std::size_t copied = text.copy(buffer, static_cast<std::size_t>(size) - 1);
  buffer[copied] = 0;
  return static_cast<int>(copied);
}

WindowPointer LockedDesktop::Find(HWND window) const {
  WindowPointer found = state_.Find(window);
  if (!found) SetLastError(kInvalidWindowHandle);
  return found;
}

void DesktopState::Changed() {
  ++version;
  changed.notify_all();
  if (change_listener) change_listener();
}

WindowPointer DesktopState::Find(HWND window) const {
  const auto found = windows.find(window);
  return found == windows.end() ? nullptr : found->second;
}

std::shared_ptr<MessageQueue> DesktopState::OwnQueue() {
  std::shared_ptr<MessageQueue>& queue = queues[std::this_thread::get_id()];
  if (!queue) {
    queue = std::make_shared<MessageQueue>();
    queue->thread = std::this_thread::get_id();
    presence.Add(weak_from_this());
  }
  return queue;
}

WindowPointer DesktopState::RootOf(HWND window) const {
  WindowPointer found = Find(window);
  while (found && found->IsChildWindow())
    found = Find(found->parent);
  return found;
}

bool DesktopState::IsInside(HWND ancestor, HWND window) const {
  for (WindowPointer at = Find(window); at; at = Find(at->parent)) {
    if (at->handle == ancestor) return true;
  }
  return false;
}

bool DesktopState::IsVisible(const Window& window) const {
  if (!window.Has(WS_VISIBLE)) return false;
  if (!window.IsChildWindow()) return true;
  const WindowPointer parent = Find(window.parent);
  return parent && IsVisible(*parent);
}

POINT DesktopState::ClientOrigin(const Window& window) const {
  const RECT outside = ScreenRectangle(window);
  const RECT frame = FrameWidths(window.style, window.extended_style);
  return {outside.left + frame.left, outside.top + frame.top};
}

RECT DesktopState::ScreenRectangle(const Window& window) const {
  const WindowPointer parent = window.IsChildWindow() ? Find(window.parent) : nullptr;
  if (!parent) return window.rectangle;
  const POINT origin = ClientOrigin(*parent);
  return Moved(window.rectangle, origin.x, origin.y);
}

RECT DesktopState::ClientRectangle(const Window& window) const {
  const RECT frame = FrameWidths(window.style, window.extended_style);
  const RECT& outside = window.rectangle;
  return {0, 0, std::max(0, outside.right - outside.left - frame.left - frame.right),
          std::max(0, outside.bottom - outside.top - frame.top - frame.bottom)};
}

HWND DesktopState::WindowAt(POINT point) const {
  const std::vector<HWND>* candidates = &top_windows;
  HWND hit = nullptr;
  while (candidates != nullptr) {
    const std::vector<HWND>* inside = nullptr;
    for (const HWND candidate : *candidates) {
      const WindowPointer window = Find(candidate);
      if (!window->Has(WS_VISIBLE) || !Contains(ScreenRectangle(*window), point)) continue;
      // A disabled child lets the mouse through to what is behind it; a disabled top window
      // swallows it.
      if (window->Has(WS_DISABLED) && hit == nullptr) return nullptr;
      if (window->Has(WS_DISABLED)) continue;
      hit = candidate;
      const POINT origin = ClientOrigin(*window);
      if (Contains(Moved(ClientRectangle(*window), origin.x, origin.y), point)) {
        inside = &window->children;
      }
      break;
    }
    candidates = inside;
  }
  return hit;
}

void DesktopState::Invalidate(Window& window, const RECT* rectangle, bool erase,
                              bool with_children) {
  const RECT client = ClientRectangle(window);
  const RECT part = rectangle != nullptr ? Common(*rectangle, client) : client;
  if (IsEmpty(part) || !IsVisible(window)) return;
  window.update = window.update ? Around(*window.update, part) : part;
  window.erase_pending = window.erase_pending || erase;
  for (const HWND child_handle : window.children) {
    if (!with_children && window.Has(WS_CLIPCHILDREN)) break;
    Window& child = *Find(child_handle);
    const RECT frame = FrameWidths(child.style, child.extended_style);
    const RECT inside =
        Moved(part, -child.rectangle.left - frame.left, -child.rectangle.top - frame.top);
    Invalidate(child, &inside, erase, with_children);
  }
  Changed();
}

HWND DesktopState::WindowToPaint(const MessageQueue& queue) const {
  std::vector<HWND> waiting(top_windows.rbegin(), top_windows.rend());
  while (!waiting.empty()) {
    const WindowPointer window = Find(waiting.back());
    waiting.pop_back();
    if (!window->Has(WS_VISIBLE)) continue;
    if (window->update && window->queue.get() == &queue) return window->handle;
    waiting.insert(waiting.end(), window->children.rbegin(), window->children.rend());
  }
  return nullptr;
}

}  // namespace host
