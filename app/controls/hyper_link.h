#pragma once

#include "app/controls/control_window.h"

namespace hostscope {

struct HyperLinkChoice {
  const char* target;  // its first 255 characters are opened
  WORD caption_id;     // a string of the program's resources
  ControlPlace place;
  FontChoice font;
  UINT format;  // as DrawTextA takes it
  COLORREF normal_color;
  COLORREF hover_color;
  COLORREF pressed_color;
};

// A text that changes its colour under the mouse and opens its target with the shell, maximised,
// when it is clicked.
class HyperLink {
 public:
  HyperLink() = default;
  HyperLink(const HyperLink&) = delete;
  HyperLink& operator=(const HyperLink&) = delete;

  // False when there is no window. The object must outlive it.
  bool Create(HWND parent, const HyperLinkChoice& choice);
  void Release();
  HWND window() const { return window_; }

 private:
  enum class State : BYTE { kNormal = 1, kHover = 2, kPressed = 3 };

  friend class ControlMessages<HyperLink>;
  bool Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void Enter(State state);
  void FollowMouse(LPARAM point);
  void Open();
  COLORREF StateColor() const;
  void Paint() const;

  HWND window_ = nullptr;
  OwnedFont font_;
  OwnedFont underlined_font_;
  char target_[kControlTextSize] = {};
  char caption_[kControlTextSize] = {};
  UINT format_ = 0;
  COLORREF normal_color_ = 0;
  COLORREF hover_color_ = 0;
  COLORREF pressed_color_ = 0;
  State state_ = State::kNormal;
};

}  // namespace hostscope
