#pragma once

#include "app/controls/control_window.h"

namespace hostscope {

// How a button is laid out and drawn.
struct CheckBoxLayout {
  RECT box;
  RECT label;
  UINT frame_state;   // as DrawFrameControl takes it
  UINT label_format;  // as DrawTextA takes it
  // The label's rectangle is what the frame drawing leaves of the box.
  bool label_within_frame;
};

// A pure function of what the window says about itself: its style, its answer to BM_GETSTATE and
// its client rectangle. A button without an alignment of its own is laid out as the system does.
CheckBoxLayout LayOutCheckBox(DWORD style, LRESULT button_state, const RECT& client);

// A layer of the check box's label with this colour is not drawn.
inline constexpr COLORREF kNoCheckBoxLayer = 0xFF000000;

// Paints a standard button of a dialog in place of the system: the box as the system draws it, the
// label embossed as a GLabel's. What the button does stays the system's.
class EmbossedCheckBox {
 public:
  EmbossedCheckBox() = default;
  EmbossedCheckBox(const EmbossedCheckBox&) = delete;
  EmbossedCheckBox& operator=(const EmbossedCheckBox&) = delete;

  // False when there is no such window or its procedure cannot be replaced. The object must outlive
  // the window.
  bool Attach(HWND check_box);
  // Of the main colour the low 24 bits count.
  void SetColors(COLORREF main, COLORREF up_left, COLORREF down_right);
  // False when nothing is attached or the system refuses.
  bool Enable(bool enable);
  // 0 unchecked, 1 checked, 2 in between.
  LRESULT GetCheck() const;
  void SetCheck(WPARAM check);
  HWND window() const { return window_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  HFONT Font() const;
  void ChangeFocusRectangle() const;
  void Paint() const;
  void PaintLabel(const ControlPainting& painting, const CheckBoxLayout& layout,
                  bool disabled) const;

  HWND window_ = nullptr;
  WNDPROC previous_procedure_ = nullptr;
  COLORREF main_color_ = 0;
  COLORREF down_right_color_ = kNoCheckBoxLayer;
  COLORREF up_left_color_ = kNoCheckBoxLayer;
};

}  // namespace hostscope
