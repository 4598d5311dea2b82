#include "app/controls/g_label.h"

#include "util/text.h"

namespace hostscope {

bool GLabel::Create(HWND parent, const GLabelChoice& choice) {
  CopyText(text_, choice.text);
  format_ = choice.format;
  text_color_ = choice.text_color;
  down_right_color_ = choice.down_right_color;
  up_left_color_ = choice.up_left_color;
  font_.Take(CreateControlFont(choice.font, DRAFT_QUALITY));
  window_ = CreateControlWindow(parent,
                                {.class_name = "GLabel",
                                 .procedure = ControlMessages<GLabel>::Procedure,
                                 .cursor = LoadCursorA(nullptr, IDC_ARROW),
                                 .style = WS_CHILD | WS_VISIBLE,
                                 .id = -1,
                                 .place = choice.place},
                                this);
  return window_ != nullptr;
}

void GLabel::Release() {
  font_.Release();
}

void GLabel::Paint() const {
  const ControlPainting painting(window_, font_.get());
  const RECT& client = painting.client();
  if (up_left_color_ != kNoLayer) painting.DrawLabel(text_, client, -1, format_, up_left_color_);
  if (down_right_color_ != kNoLayer) {
    painting.DrawLabel(text_, client, 1, format_, down_right_color_);
  }
  painting.DrawLabel(text_, client, 0, format_, text_color_);
}

bool GLabel::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_LBUTTONDOWN) return false;
  SendMessageA(GetParent(window_), message, wparam, lparam);
  return true;
}

}  // namespace hostscope
