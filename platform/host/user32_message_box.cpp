// Message boxes. A box is a top window without controls: the person's answer comes through the
// desktop (platform/host/desktop.h) or from the keys Enter and Escape.

#include <algorithm>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

std::shared_ptr<OpenBox> BoxOf(const DesktopState& state, HWND window) {
  for (const auto& open : state.open_boxes) {
    if (open->window == window) return open;
  }
  return nullptr;
}

void Answer(HWND window, int answer) {
  const LockedDesktop desktop;
  const auto open = BoxOf(*desktop, window);
  if (!open || answer == 0) return;
  open->answer = answer;
  desktop->Changed();
}

LRESULT BoxProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_KEYDOWN && message != WM_CLOSE) {
    return DefaultProcedure(window, message, wparam, lparam);
  }
  ShownMessageBox box;
  {
    const LockedDesktop desktop;
    const auto open = BoxOf(*desktop, window);
    if (!open) return DefaultProcedure(window, message, wparam, lparam);
    box = open->box;
  }
  if (message == WM_CLOSE || wparam == VK_ESCAPE) Answer(window, box.EscapeButton());
  if (message == WM_KEYDOWN && wparam == VK_RETURN) Answer(window, box.DefaultButton());
  return 0;
}

HWND MakeBoxWindow(const ShownMessageBox& box) {
  constexpr int kWidth = 360;
  constexpr int kHeight = 140;
  const int x = (SystemMetric(SM_CXSCREEN) - kWidth) / 2;
  const int y = (SystemMetric(SM_CYSCREEN) - kHeight) / 2;
  WindowPlan plan;
  plan.window_class = "#32770";
  plan.text = box.caption;
  plan.style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
  plan.rectangle = {x, y, x + kWidth, y + kHeight};
  plan.parent = box.owner;
  plan.procedure = BoxProcedure;
  return MakeWindow(std::move(plan));
}

std::optional<int> StatedAnswer() {
  const LockedDesktop desktop;
  if (desktop->stated_answers.empty()) return std::nullopt;
  const int answer = desktop->stated_answers.front();
  desktop->stated_answers.pop_front();
  return answer;
}

// The answer that the open box has by now.
std::optional<int> AnswerOf(const OpenBox& open) {
  const LockedDesktop desktop;
  return open.answer;
}

int WaitForAnswer(const OpenBox& open) {
  Deadline deadline;
  {
    const LockedDesktop desktop;
    if (desktop->patience) deadline = std::chrono::steady_clock::now() + *desktop->patience;
  }
  MSG message = {};
  while (true) {
    if (const std::optional<int> answer = AnswerOf(open)) return *answer;
    const Retrieved retrieved = Retrieve(message, {}, deadline);
    const bool late = deadline && std::chrono::steady_clock::now() >= *deadline;
    if (retrieved == Retrieved::kGivenUp || late) return AnswerOf(open).value_or(0);
    if (retrieved != Retrieved::kMessage) continue;
    Translate(message);
    Deliver(message);
  }
}

// The box is on record and open while the object lives.
class OpenBoxRecord {
 public:
  explicit OpenBoxRecord(const ShownMessageBox& box) : open_(std::make_shared<OpenBox>()) {
    open_->box = box;
    open_->window = MakeBoxWindow(box);
    const LockedDesktop desktop;
    desktop->shown_boxes.push_back(box);
    desktop->open_boxes.push_back(open_);
    desktop->Changed();
  }
  ~OpenBoxRecord() {
    const LockedDesktop desktop;
    std::erase(desktop->open_boxes, open_);
    desktop->Changed();
  }
  OpenBoxRecord(const OpenBoxRecord&) = delete;
  OpenBoxRecord& operator=(const OpenBoxRecord&) = delete;
  const OpenBox& open() const { return *open_; }

 private:
  std::shared_ptr<OpenBox> open_;
};

int RunBox(const ShownMessageBox& box) {
  const ModalLoop loop;
  if (box.owner != nullptr) Enable(box.owner, false);
  int answer = 0;
  HWND window = nullptr;
  {
    const OpenBoxRecord record(box);
    window = record.open().window;
    Show(window, true);
    const std::optional<int> stated = StatedAnswer();
    answer = stated ? *stated : WaitForAnswer(record.open());
  }
  if (box.owner != nullptr) Enable(box.owner, true);
  RemoveWindow(window);
  return answer;
}

struct BoxButtons {
  UINT type;
  int buttons[3];
};

constexpr BoxButtons kBoxButtons[] = {
    {MB_OK, {IDOK}},
    {MB_OKCANCEL, {IDOK, IDCANCEL}},
    {MB_ABORTRETRYIGNORE, {IDABORT, IDRETRY, IDIGNORE}},
    {MB_YESNOCANCEL, {IDYES, IDNO, IDCANCEL}},
    {MB_YESNO, {IDYES, IDNO}},
    {MB_RETRYCANCEL, {IDRETRY, IDCANCEL}},
};

}  // namespace

std::vector<int> ShownMessageBox::Buttons() const {
  std::vector<int> buttons;
  for (const BoxButtons& row : kBoxButtons) {
    if (row.type != (style & MB_TYPEMASK)) continue;
    for (const int button : row.buttons) {
      if (button != 0) buttons.push_back(button);
    }
  }
  return buttons;
}

int ShownMessageBox::DefaultButton() const {
  const std::vector<int> buttons = Buttons();
  if (buttons.empty()) return 0;
  const std::size_t stated = (style >> 8) & 0xF;
  return buttons[stated < buttons.size() ? stated : 0];
}

int ShownMessageBox::EscapeButton() const {
  const std::vector<int> buttons = Buttons();
  if (buttons.size() == 1) return buttons.front();
  const bool cancels = std::find(buttons.begin(), buttons.end(), IDCANCEL) != buttons.end();
  return cancels ? IDCANCEL : 0;
}

}  // namespace host

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
  if (host::EndableCallFails("MessageBoxA")) return 0;
  host::ShownMessageBox box;
  box.owner = owner;
  box.text = text != nullptr ? text : "";
  box.caption = caption != nullptr ? caption : "Error";
  box.style = style;
  if (box.Buttons().empty()) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  if (owner != nullptr) {
    const host::LockedDesktop desktop;
    if (!desktop.Find(owner)) return 0;
  }
  return host::RunBox(box);
}
