#include "app/controls/tsp_button.h"

namespace hostscope {
namespace {

inline constexpr int kFocusInset = 3;
inline constexpr COLORREF kCaptionColor = 0;
inline constexpr COLORREF kPressedCaptionColor = 0x404040;

bool IsClickKey(WPARAM key) {
  return key == VK_RETURN || key == VK_SPACE;
}

}  // namespace

bool TspButton::Create(HWND parent, const TspButtonChoice& choice) {
  FontChoice plain = choice.font;
  plain.style = 0;
  LoadStringA(InstanceOf(parent), choice.caption_id, caption_, kControlTextSize);
  id_ = choice.id;
  font_.Take(CreateControlFont(plain, PROOF_QUALITY));
  window_ = CreateControlWindow(parent,
                                {.class_name = "TspButton",
                                 .procedure = ControlMessages<TspButton>::Procedure,
                                 .cursor = LoadCursorA(nullptr, IDC_ARROW),
                                 .style = WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                                 .id = choice.id,
                                 .place = choice.place},
                                this);
  return window_ != nullptr;
}

void TspButton::Release() {
  font_.Release();
}

void TspButton::Enter(State state) {
  previous_state_ = state_;
  state_ = state;
  Repaint(window_);
}

void TspButton::GainFocus() {
  if (state_ == State::kNormal) Enter(State::kFocused);
}

// A button whose dialog loses the focus to another window keeps its look. GetParent alone would
// take a message box for a sibling, since it answers with the owner of a window that has no parent.
void TspButton::LoseFocus(HWND gaining) {
  const HWND parent = GetParent(window_);
  if (GetParent(gaining) == parent && IsChild(parent, gaining)) Enter(State::kNormal);
}

void TspButton::PressKey(WPARAM key) {
  if (IsClickKey(key) && state_ != State::kPressed) Enter(State::kPressed);
}

void TspButton::ReleaseKey(WPARAM key) {
  if (IsClickKey(key) && state_ != State::kNormal) LetGo(static_cast<LPARAM>(key));
}

void TspButton::PressMouse() {
  if (state_ == State::kPressed) return;
  SetCapture(window_);
  Enter(State::kPressed);
  SetFocus(window_);
}

void TspButton::ReleaseMouse() {
  if (state_ == State::kNormal) return;
  ReleaseCapture();
  LetGo(0);
}

void TspButton::LetGo(LPARAM key) {
  Enter(State::kFocused);
  focus_drawn_ = false;
  SendMessageA(GetParent(window_), WM_COMMAND, id_, key);
}

// Drawing the focus rectangle a second time takes it away: it is drawn where it has to change.
bool TspButton::TakesFocusRectangle() const {
  switch (state_) {
    case State::kNormal:
      return previous_state_ != State::kNormal;
    case State::kFocused:
      return previous_state_ == State::kNormal || focus_drawn_;
    case State::kPressed:
      break;
  }
  return previous_state_ == State::kNormal;
}

void TspButton::Paint() {
  const ControlPainting painting(window_, font_.get());
  if (TakesFocusRectangle()) {
    RECT focus = painting.client();
    InflateRect(&focus, -kFocusInset, -kFocusInset);
    DrawFocusRect(painting.dc(), &focus);
  }
  if (state_ == State::kNormal) previous_state_ = State::kNormal;
  if (state_ == State::kFocused) focus_drawn_ = true;
  const bool pressed = state_ == State::kPressed;
  RECT edge = painting.client();
  DrawEdge(painting.dc(), &edge, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT);
  painting.DrawLabel(caption_, painting.client(), 0,
                     DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP,
                     pressed ? kPressedCaptionColor : kCaptionColor);
}

bool TspButton::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_SETFOCUS:
      GainFocus();
      return true;
    case WM_KILLFOCUS:
      LoseFocus(reinterpret_cast<HWND>(wparam));
      return true;
    case WM_KEYDOWN:
      PressKey(wparam);
      return true;
    case WM_KEYUP:
      ReleaseKey(wparam);
      return true;
    case WM_LBUTTONDOWN:
      PressMouse();
      return true;
    case WM_MOUSEMOVE:
      if (state_ == State::kPressed && !IsInClientArea(window_, lparam)) {
        SendMessageA(window_, WM_LBUTTONUP, 0, 0);
      }
      return true;
    case WM_LBUTTONUP:
      ReleaseMouse();
      return true;
    default:
      return false;
  }
}

}  // namespace hostscope
