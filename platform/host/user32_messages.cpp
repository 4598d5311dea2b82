// Messages: sending within and across threads, posting, translating keys.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

LRESULT DeliverTo(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  WNDPROC procedure = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    if (!window) return 0;
    procedure = window->procedure;
  }
  return procedure(handle, message, wparam, lparam);
}

LRESULT SendAcross(DesktopState& state, const WindowPointer& window, UINT message, WPARAM wparam,
                   LPARAM lparam) {
  EndThreadIfProcessEnded();
  const auto sent = std::make_shared<SentMessage>(SentMessage{
      .window = window->handle, .message = message, .wparam = wparam, .lparam = lparam});
  {
    Lock lock(state.mutex);
    const std::shared_ptr<MessageQueue> own = state.OwnQueue();
    MessageQueue& target = *window->queue;
    if (target.thread_ended || !state.Find(window->handle)) return 0;
    state.senders.insert(own->thread);
    target.sent.push_back(sent);
    state.Changed();
    // A thread that waits for another one goes on carrying out what is sent to its own windows.
    // At the end of the process it leaves, but not while its message is being carried out: that may
    // use a text in this thread's frames.
    while (!sent->done && (sent->begun || !(state.given_up || ProcessHasEnded()))) {
      if (!own->sent.empty()) {
        CarryOutOne(state, *own, lock);
      } else {
        state.changed.wait(lock);
      }
    }
    target.sent.erase(std::remove(target.sent.begin(), target.sent.end(), sent), target.sent.end());
  }
  EndThreadIfProcessEnded();
  return sent->result;
}

char CharacterOf(WPARAM key, bool shift) {
  if (key >= 'A' && key <= 'Z') return static_cast<char>(shift ? key : key + ('a' - 'A'));
  if (key >= '0' && key <= '9') return static_cast<char>(key);
  switch (key) {
    case VK_SPACE:
    case VK_RETURN:
    case VK_TAB:
    case VK_ESCAPE:
    case VK_BACK:
      return static_cast<char>(key);
    default:
      return 0;
  }
}

}  // namespace

void CarryOutOne(DesktopState& state, MessageQueue& queue, Lock& lock) {
  const std::shared_ptr<SentMessage> sent = queue.sent.front();
  queue.sent.pop_front();
  sent->begun = true;
  lock.unlock();
  const auto finish = [&] {
    lock.lock();
    sent->done = true;
    state.Changed();
  };
  try {
    sent->result = DeliverTo(sent->window, sent->message, sent->wparam, sent->lparam);
  } catch (...) {
    finish();
    throw;
  }
  finish();
}

LRESULT Send(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  DesktopState& state = CurrentDesktop();
  WindowPointer window;
  {
    const LockedDesktop desktop;
    window = desktop.Find(handle);
    if (!window) return 0;
    if (window->queue == desktop->OwnQueue()) window.reset();
  }
  if (!window) return DeliverTo(handle, message, wparam, lparam);
  return SendAcross(state, window, message, wparam, lparam);
}

bool Post(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window || window->queue->thread_ended) return false;
  window->queue->posted.push_back({handle, message, wparam, lparam, 0, {}});
  desktop->Changed();
  return true;
}

LRESULT Deliver(const MSG& message) {
  return DeliverTo(message.hwnd, message.message, message.wParam, message.lParam);
}

bool Translate(const MSG& message) {
  const bool system_key = message.message == WM_SYSKEYDOWN;
  if (message.message != WM_KEYDOWN && !system_key) return false;
  bool shift = false;
  {
    const LockedDesktop desktop;
    shift = desktop->OwnQueue()->shift_down;
  }
  const char character = CharacterOf(message.wParam, shift);
  if (character == 0) return false;
  return Post(message.hwnd, system_key ? WM_SYSCHAR : WM_CHAR, static_cast<BYTE>(character),
              message.lParam);
}

}  // namespace host

using host::CallFails;

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (CallFails("DefWindowProcA")) return 0;
  {
    const host::LockedDesktop desktop;
    if (!desktop.Find(window)) return 0;
  }
  return host::DefaultProcedure(window, message, wparam, lparam);
}

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wparam,
                        LPARAM lparam) {
  if (CallFails("CallWindowProcA") || procedure == nullptr) return 0;
  return procedure(window, message, wparam, lparam);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (CallFails("SendMessageA")) return 0;
  return host::Send(window, message, wparam, lparam);
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (CallFails("PostMessageA")) return FALSE;
  return host::Post(window, message, wparam, lparam);
}

BOOL GetMessageA(LPMSG message, HWND window, UINT first, UINT last) {
  if (CallFails("GetMessageA")) return -1;
  return host::Retrieve(*message, {window, first, last}, {}) == host::Retrieved::kMessage;
}

BOOL PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT options) {
  if (CallFails("PeekMessageA")) return FALSE;
  // Looking without taking out is not offered.
  if ((options & PM_REMOVE) == 0) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return FALSE;
  }
  const host::Retrieved retrieved = host::Retrieve(*message, {window, first, last}, host::kAtOnce);
  return retrieved == host::Retrieved::kMessage || retrieved == host::Retrieved::kQuit;
}

BOOL TranslateMessage(const MSG* message) {
  if (CallFails("TranslateMessage")) return FALSE;
  return host::Translate(*message);
}

LRESULT DispatchMessageA(const MSG* message) {
  if (CallFails("DispatchMessageA")) return 0;
  return host::Deliver(*message);
}
