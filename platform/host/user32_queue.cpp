// Each thread's queue: what comes next of what was sent and posted, what the person does, and
// painting.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/machine.h"

namespace host {
namespace {

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

}  // namespace

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

}  // namespace host
