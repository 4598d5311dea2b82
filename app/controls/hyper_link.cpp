#include "app/controls/hyper_link.h"

#include "util/text.h"

namespace hostscope {

bool HyperLink::Create(HWND parent, const HyperLinkChoice& choice) {
  CopyText(target_, choice.target);
  LoadStringA(GetModuleHandleA(nullptr), choice.caption_id, caption_, kControlTextSize);
  format_ = choice.format;
  normal_color_ = choice.normal_color;
  hover_color_ = choice.hover_color;
  pressed_color_ = choice.pressed_color;
  FontChoice underlined = choice.font;
  underlined.style |= kUnderlineStyle;
  font_.Take(CreateControlFont(choice.font, DRAFT_QUALITY));
  underlined_font_.Take(CreateControlFont(underlined, DRAFT_QUALITY));
  window_ = CreateControlWindow(parent,
                                {.class_name = "HyperLink",
                                 .procedure = ControlMessages<HyperLink>::Procedure,
                                 .cursor = LoadCursorA(InstanceOf(parent), IDC_HAND),
                                 .style = WS_CHILD | WS_VISIBLE,
                                 .id = -1,
                                 .place = choice.place},
                                this);
  return window_ != nullptr;
}

void HyperLink::Release() {
  font_.Release();
  underlined_font_.Release();
}

void HyperLink::Enter(State state) {
  state_ = state;
  Repaint(window_);
}

void HyperLink::FollowMouse(LPARAM point) {
  if (!IsInClientArea(window_, point)) {
    ReleaseCapture();
    Enter(State::kNormal);
  } else if (state_ != State::kHover) {
    SetCapture(window_);
    Enter(State::kHover);
  }
}

void HyperLink::Open() {
  Enter(State::kNormal);
  ShellExecuteA(nullptr, "open", target_, nullptr, nullptr, SW_SHOWMAXIMIZED);
}

COLORREF HyperLink::StateColor() const {
  switch (state_) {
    case State::kHover:
      return hover_color_;
    case State::kPressed:
      return pressed_color_;
    case State::kNormal:
      break;
  }
  return normal_color_;
}

// Every state uses the same font: nothing is erased between two paintings, so the line under the
// text could not be taken away again.
void HyperLink::Paint() const {
  const HFONT underlined = underlined_font_.get();
  const ControlPainting painting(window_, underlined != nullptr ? underlined : font_.get());
  painting.DrawLabel(caption_, painting.client(), 0, format_, StateColor());
}

bool HyperLink::Handle(UINT message, WPARAM, LPARAM lparam) {
  switch (message) {
    case WM_MOUSEMOVE:
      FollowMouse(lparam);
      return true;
    case WM_LBUTTONDOWN:
      Enter(State::kPressed);
      return true;
    case WM_LBUTTONUP:
      Open();
      return true;
    default:
      return false;
  }
}

}  // namespace hostscope
