#pragma once

#include "app/controls/control_window.h"

namespace hostscope {

struct TspButtonChoice {
  WORD caption_id;  // a string of the parent's instance
  ControlPlace place;
  FontChoice font;  // of its style nothing is used
  WORD id;
};

// A push button that paints itself over whatever is under it. A click by mouse or keyboard sends
// the parent WM_COMMAND with the button's identifier; the second parameter is 0 for the mouse, else
// the key. Leaving the pressed button with the mouse counts as releasing it.
class TspButton {
 public:
  TspButton() = default;
  TspButton(const TspButton&) = delete;
  TspButton& operator=(const TspButton&) = delete;

  // False when there is no window. The object must outlive it.
  bool Create(HWND parent, const TspButtonChoice& choice);
  void Release();
  HWND window() const { return window_; }

 private:
  enum class State : BYTE { kNormal = 1, kFocused = 2, kPressed = 3 };

  friend class ControlMessages<TspButton>;
  bool Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void Enter(State state);
  void GainFocus();
  void LoseFocus(HWND gaining);
  void PressKey(WPARAM key);
  void ReleaseKey(WPARAM key);
  void PressMouse();
  void ReleaseMouse();
  void LetGo(LPARAM key);
  bool TakesFocusRectangle() const;
  void Paint();

  HWND window_ = nullptr;
  OwnedFont font_;
  char caption_[kControlTextSize] = {};
  WORD id_ = 0;
  State state_ = State::kNormal;
  State previous_state_ = State::kNormal;
  bool focus_drawn_ = false;
};

}  // namespace hostscope
