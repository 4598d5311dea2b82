// Messages: sending within and across threads, posting, and each thread's queue.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

using Lock = std::unique_lock<std::mutex>;

LRESULT CallProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  WNDPROC procedure = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(handle);
    if (!window) return 0;
    procedure = window->procedure;
  }
  return procedure(handle, message, wparam, lparam);
}

// Carries out the oldest message that another thread has sent; the lock is given up meanwhile.
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
    sent->result = CallProcedure(sent->window, sent->message, sent->wparam, sent->lparam);
  } catch (...) {
    finish();
    throw;
  }
  finish();
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

bool Passes(const MessageFilter& filter, const DesktopState& state, const MSG& message) {
  const bool window_fits = filter.window == nullptr || state.IsInside(filter.window, message.hwnd);
  const bool number_fits = (filter.first == 0 && filter.last == 0) ||
                           (message.message >= filter.first && message.message <= filter.last);
  return window_fits && number_fits;
}

// The message that an input event becomes; false when no window takes it.
bool MessageOf(DesktopState& state, MessageQueue& queue, const InputEvent& event, MSG& message) {
  queue.shift_down = event.shift;
  if (event.message >= WM_MOUSEMOVE) {
    const HWND target = state.capture != nullptr ? state.capture : state.WindowAt(event.point);
    const WindowPointer window = state.Find(target);
    if (!window) return false;
    if (event.message != WM_MOUSEMOVE) queue.button_down = event.message == WM_LBUTTONDOWN;
    const POINT origin = state.ClientOrigin(*window);
    const POINT point = {event.point.x - origin.x, event.point.y - origin.y};
    const RECT client = state.ClientRectangle(*window);
    const bool inside =
        point.x >= 0 && point.y >= 0 && point.x < client.right && point.y < client.bottom;
    if (state.capture == nullptr && !inside) return false;
    message = {target,
               event.message,
               queue.button_down ? MK_LBUTTON : 0,
               MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y)),
               0,
               event.point};
    return true;
  }
  const bool system_key = event.alt || state.focus == nullptr;
  const HWND target = state.focus != nullptr ? state.focus : state.active;
  const UINT number = system_key ? event.message + (WM_SYSKEYDOWN - WM_KEYDOWN) : event.message;
  const bool up = event.message == WM_KEYUP;
  const LPARAM details = 1 | (event.alt ? LPARAM{1} << 29 : 0) | (up ? LPARAM{3} << 30 : 0);
  message = {target, number, event.key, details, 0, {}};
  return target != nullptr;
}

// Takes the next message out of the queue, in the platform's order: what was posted, the end of the
// program, what the person did, painting.
Retrieved TakeOne(DesktopState& state, MessageQueue& queue, const MessageFilter& filter,
                  MSG& message) {
  const auto posted = std::find_if(queue.posted.begin(), queue.posted.end(),
                                   [&](const MSG& one) { return Passes(filter, state, one); });
  if (posted != queue.posted.end()) {
    message = *posted;
    queue.posted.erase(posted);
    return Retrieved::kMessage;
  }
  if (queue.quit_code) {
    message = {nullptr, WM_QUIT, static_cast<WPARAM>(*queue.quit_code), 0, 0, {}};
    queue.quit_code.reset();
    return Retrieved::kQuit;
  }
  while (!queue.input.empty()) {
    const std::shared_ptr<InputEvent> event = queue.input.front();
    queue.input.pop_front();
    if (MessageOf(state, queue, *event, message)) {
      queue.in_hand = event;
      return Retrieved::kMessage;
    }
    event->done = true;
    state.Changed();
  }
  message = {state.WindowToPaint(queue), WM_PAINT, 0, 0, 0, {}};
  if (message.hwnd != nullptr && Passes(filter, state, message)) return Retrieved::kMessage;
  return Retrieved::kNothing;
}

void ReleaseInHand(DesktopState& state, MessageQueue& queue) {
  if (!queue.in_hand) return;
  queue.in_hand->done = true;
  queue.in_hand.reset();
  state.Changed();
}

// Waits for a change; false when the deadline has passed.
bool Rest(DesktopState& state, MessageQueue& queue, Lock& lock, Deadline deadline) {
  if (deadline == kAtOnce) return false;
  // Told without a new version: nothing has changed that another resting thread must look at.
  queue.at_rest = true;
  state.changed.notify_all();
  const unsigned long seen = state.version;
  const auto news = [&] { return state.version != seen; };
  bool in_time = true;
  if (deadline) {
    in_time = state.changed.wait_until(lock, *deadline, news);
  } else {
    state.changed.wait(lock, news);
  }
  queue.at_rest = false;
  return in_time;
}

// A window that the mouse is pressed in comes to the front first.
void ActivateForMouse(const MSG& message) {
  if (message.message != WM_LBUTTONDOWN) return;
  HWND root = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer found = desktop->RootOf(message.hwnd);
    if (found) root = found->handle;
  }
  Activate(root);
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

LRESULT Send(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  DesktopState& state = CurrentDesktop();
  WindowPointer window;
  {
    const LockedDesktop desktop;
    window = desktop.Find(handle);
    if (!window) return 0;
    if (window->queue == desktop->OwnQueue()) window.reset();
  }
  if (!window) return CallProcedure(handle, message, wparam, lparam);
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

Retrieved Retrieve(MSG& message, const MessageFilter& filter, Deadline deadline) {
  EndThreadIfProcessEnded();
  DesktopState& state = CurrentDesktop();
  Retrieved retrieved = Retrieved::kNothing;
  {
    Lock lock(state.mutex);
    const std::shared_ptr<MessageQueue> queue = state.OwnQueue();
    ReleaseInHand(state, *queue);
    while (!ProcessHasEnded()) {
      if (state.given_up) return Retrieved::kGivenUp;
      if (!queue->sent.empty()) {
        CarryOutOne(state, *queue, lock);
        continue;
      }
      retrieved = TakeOne(state, *queue, filter, message);
      if (retrieved != Retrieved::kNothing || !Rest(state, *queue, lock, deadline)) break;
    }
  }
  EndThreadIfProcessEnded();
  if (retrieved == Retrieved::kMessage) ActivateForMouse(message);
  return retrieved;
}

LRESULT Deliver(const MSG& message) {
  return CallProcedure(message.hwnd, message.message, message.wParam, message.lParam);
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

void WorkOffMessages() {
  MSG message = {};
  while (Retrieve(message, {}, kAtOnce) == Retrieved::kMessage) {
    HWND root = nullptr;
    {
      const LockedDesktop desktop;
      const WindowPointer found = desktop->RootOf(message.hwnd);
      if (found) root = found->handle;
    }
    if (IsDialog(root) && DialogMessage(root, message)) continue;
    Translate(message);
    Deliver(message);
  }
}

ModalLoop::ModalLoop() : state_(CurrentDesktop().shared_from_this()) {
  const std::lock_guard lock(state_->mutex);
  queue_ = state_->OwnQueue();
  ++queue_->modal_loops;
  state_->Changed();
}

ModalLoop::~ModalLoop() {
  const std::lock_guard lock(state_->mutex);
  --queue_->modal_loops;
  ReleaseInHand(*state_, *queue_);
  state_->Changed();
}

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

void PostQuitMessage(int exit_code) {
  if (CallFails("PostQuitMessage")) return;
  const host::LockedDesktop desktop;
  desktop->OwnQueue()->quit_code = exit_code;
  desktop->Changed();
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
