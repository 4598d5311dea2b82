#pragma once

#include "app/controls/control_window.h"

namespace hostscope {

// A layer of the label with this colour is not drawn.
inline constexpr COLORREF kNoLayer = 0xFFFFFFFF;

struct GLabelChoice {
  const char* text;  // its first 255 characters are shown
  ControlPlace place;
  FontChoice font;
  UINT format;  // as DrawTextA takes it
  COLORREF text_color;
  COLORREF down_right_color;  // of a copy one pixel down and to the right, under the text
  COLORREF up_left_color;     // of a copy one pixel up and to the left
};

// A static text, with up to two copies of it under it that make it look embossed. A press of the
// left mouse button is handed to the parent, its point still that of the label.
class GLabel {
 public:
  GLabel() = default;
  GLabel(const GLabel&) = delete;
  GLabel& operator=(const GLabel&) = delete;

  // False when there is no window. The object must outlive it.
  bool Create(HWND parent, const GLabelChoice& choice);
  void Release();
  HWND window() const { return window_; }

 private:
  friend class ControlMessages<GLabel>;
  bool Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void Paint() const;

  HWND window_ = nullptr;
  OwnedFont font_;
  char text_[kControlTextSize] = {};
  UINT format_ = 0;
  COLORREF text_color_ = 0;
  COLORREF down_right_color_ = kNoLayer;
  COLORREF up_left_color_ = kNoLayer;
};

}  // namespace hostscope
