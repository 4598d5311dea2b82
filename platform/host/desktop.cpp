#include "platform/host/desktop.h"

#include <algorithm>

#include "platform/host/desktop_state.h"

namespace host {
namespace {

// Whether the thread has dealt with all it has and waits, or has left its loops. Locked.
bool IsAtRest(const DesktopState& state, const MessageQueue& queue) {
  if (queue.thread_ended || state.given_up) return true;
  const bool idle = queue.sent.empty() && queue.posted.empty() && queue.input.empty() &&
                    state.WindowToPaint(queue) == nullptr;
  return idle && (queue.at_rest || (queue.modal_loops == 0 && !queue.in_hand));
}

// Hands the event to the queue's thread and waits until it is dealt with.
bool HandOver(DesktopState& state, const std::shared_ptr<MessageQueue>& queue,
              const InputEvent& event) {
  const auto handed = std::make_shared<InputEvent>(event);
  bool own = false;
  {
    const Lock lock(state.mutex);
    queue->input.push_back(handed);
    state.Changed();
    own = queue == state.OwnQueue();
  }
  if (own) {
    WorkOffMessages();
    return true;
  }
  Lock lock(state.mutex);
  return state.changed.wait_for(lock, Desktop::kLimit, [&] {
    return (handed->done || queue->thread_ended) && IsAtRest(state, *queue);
  });
}

bool Mouse(DesktopState& state, HWND window, UINT message, int x, int y) {
  std::shared_ptr<MessageQueue> queue;
  InputEvent event{.message = message};
  {
    const Lock lock(state.mutex);
    const WindowPointer found = state.Find(window);
    if (!found || !state.IsVisible(*found)) return false;
    const POINT origin = state.ClientOrigin(*found);
    event.point = {origin.x + x, origin.y + y};
    if (state.capture == nullptr && state.WindowAt(event.point) == nullptr) return false;
    queue = found->queue;
  }
  return HandOver(state, queue, event);
}

bool Key(DesktopState& state, UINT message, WPARAM key, bool shift, bool alt) {
  std::shared_ptr<MessageQueue> queue;
  {
    const Lock lock(state.mutex);
    const WindowPointer active = state.Find(state.active);
    if (!active) return false;
    queue = active->queue;
  }
  return HandOver(state, queue, {.message = message, .key = key, .shift = shift, .alt = alt});
}

}  // namespace

Desktop::Desktop() : dialogs(ProgramDialogs()), state_(std::make_shared<DesktopState>()) {
  AddSystemClasses(*state_);
}

Desktop::~Desktop() = default;

std::vector<HWND> Desktop::TopWindows() const {
  const Lock lock(state_->mutex);
  return state_->top_windows;
}

std::vector<HWND> Desktop::Children(HWND parent) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(parent);
  return window ? window->children : std::vector<HWND>();
}

std::string Desktop::Text(HWND handle) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  return window ? window->text : std::string();
}

std::vector<std::string> Desktop::ListLines(HWND handle) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  const auto* const list = window ? window->As<ListBox>() : nullptr;
  return list != nullptr ? list->lines : std::vector<std::string>();
}

int Desktop::ListCurrentLine(HWND handle) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  const auto* const list = window ? window->As<ListBox>() : nullptr;
  return list != nullptr ? list->current : -1;
}

int Desktop::ListTopLine(HWND handle) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  const auto* const list = window ? window->As<ListBox>() : nullptr;
  return list != nullptr ? list->top : -1;
}

HWND Desktop::Focus() const {
  const Lock lock(state_->mutex);
  return state_->focus;
}

HWND Desktop::Capture() const {
  const Lock lock(state_->mutex);
  return state_->capture;
}

HWND Desktop::ActiveWindow() const {
  const Lock lock(state_->mutex);
  return state_->active;
}

HCURSOR Desktop::CursorAt(HWND handle) const {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  return window ? window->window_class->record.hCursor : nullptr;
}

std::vector<DrawingCall> Desktop::TakeDrawing(HWND handle) {
  const Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  if (!window) return {};
  std::vector<DrawingCall> calls(std::make_move_iterator(window->drawing.begin()),
                                 std::make_move_iterator(window->drawing.end()));
  window->drawing.clear();
  return calls;
}

bool Desktop::MouseMove(HWND window, int x, int y) {
  return Mouse(*state_, window, WM_MOUSEMOVE, x, y);
}

bool Desktop::MouseDown(HWND window, int x, int y) {
  return Mouse(*state_, window, WM_LBUTTONDOWN, x, y);
}

bool Desktop::MouseUp(HWND window, int x, int y) {
  return Mouse(*state_, window, WM_LBUTTONUP, x, y);
}

bool Desktop::Click(HWND window, int x, int y) {
  // The pointer gets there first; and the window may go at the press already.
  if (!MouseMove(window, x, y) || !MouseDown(window, x, y)) return false;
  MouseUp(window, x, y);
  return true;
}

bool Desktop::KeyDown(WPARAM key, bool shift, bool alt) {
  return Key(*state_, WM_KEYDOWN, key, shift, alt);
}

bool Desktop::KeyUp(WPARAM key, bool shift, bool alt) {
  return Key(*state_, WM_KEYUP, key, shift, alt);
}

bool Desktop::KeyPress(WPARAM key, bool shift, bool alt) {
  if (!KeyDown(key, shift, alt)) return false;
  KeyUp(key, shift, alt);
  return true;
}

bool Desktop::PressCloseBox(HWND handle) {
  std::shared_ptr<MessageQueue> queue;
  {
    const Lock lock(state_->mutex);
    const WindowPointer window = state_->Find(handle);
    if (!window || window->Has(WS_DISABLED) || !window->Has(WS_SYSMENU)) return false;
    queue = window->queue;
    queue->posted.push_back({handle, WM_SYSCOMMAND, SC_CLOSE, 0, 0, {}});
    state_->Changed();
    if (queue != state_->OwnQueue()) queue.reset();
  }
  if (!queue) return WaitForRest(handle);
  WorkOffMessages();
  return true;
}

bool Desktop::WaitUntil(const std::function<bool()>& condition, Limit limit) const {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (true) {
    unsigned long seen = 0;
    {
      const Lock lock(state_->mutex);
      seen = state_->version;
    }
    if (condition()) return true;
    Lock lock(state_->mutex);
    const auto news = [&] { return state_->version != seen; };
    if (!state_->changed.wait_until(lock, deadline, news)) return false;
  }
}

bool Desktop::WaitForRest(HWND handle, Limit limit) const {
  Lock lock(state_->mutex);
  const WindowPointer window = state_->Find(handle);
  if (!window) return false;
  const std::shared_ptr<MessageQueue> queue = window->queue;
  return state_->changed.wait_for(lock, limit, [&] { return IsAtRest(*state_, *queue); });
}

int Desktop::SendingThreads() const {
  const Lock lock(state_->mutex);
  return static_cast<int>(state_->senders.size());
}

void Desktop::StateAnswers(std::vector<int> answers) {
  const Lock lock(state_->mutex);
  state_->stated_answers.assign(answers.begin(), answers.end());
}

void Desktop::SetPatience(std::optional<Limit> patience) {
  const Lock lock(state_->mutex);
  state_->patience = patience;
}

std::optional<ShownMessageBox> Desktop::OpenMessageBox() const {
  const Lock lock(state_->mutex);
  if (state_->open_boxes.empty() || state_->open_boxes.back()->answer) return {};
  return state_->open_boxes.back()->box;
}

bool Desktop::AnswerMessageBox(int answer) {
  const Lock lock(state_->mutex);
  if (state_->open_boxes.empty() || state_->open_boxes.back()->answer) return false;
  OpenBox& open = *state_->open_boxes.back();
  open.answer = answer;
  // Its loop waits for a message.
  const WindowPointer window = state_->Find(open.window);
  if (window) window->queue->posted.push_back({open.window, WM_NULL, 0, 0, 0, {}});
  state_->Changed();
  return true;
}

std::vector<ShownMessageBox> Desktop::MessageBoxes() const {
  const Lock lock(state_->mutex);
  return state_->shown_boxes;
}

std::vector<ShellOpening> Desktop::ShellOpenings() const {
  const Lock lock(state_->mutex);
  return state_->shell_openings;
}

void Desktop::ListenToLists(std::function<void(const ListChange&)> listener) {
  const Lock lock(state_->mutex);
  state_->list_listener = std::move(listener);
}

void Desktop::ListenToChanges(std::function<void()> listener) {
  const Lock lock(state_->mutex);
  state_->change_listener = std::move(listener);
}

void Desktop::Wake() {
  const Lock lock(state_->mutex);
  state_->Changed();
}

void Desktop::GiveUp() {
  const Lock lock(state_->mutex);
  state_->given_up = true;
  state_->Changed();
}

}  // namespace host
