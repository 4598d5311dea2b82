#include "app/controls/embossed_check_box.h"

namespace hostscope {
namespace {

inline constexpr LONG kBoxWidth = 13;
inline constexpr LONG kBoxHeight = 15;
inline constexpr LONG kLabelLeft = 17;
inline constexpr LONG kLabelRightMargin = 6;
inline constexpr int kPushLikeInset = 2;
inline constexpr LRESULT kCheckMask = 3;
inline constexpr COLORREF kColorMask = 0x00FFFFFF;

bool IsPushButton(DWORD style) {
  return (style & BS_TYPEMASK) <= BS_DEFPUSHBUTTON;
}

bool IsPushLike(DWORD style) {
  return (style & BS_PUSHLIKE) != 0;
}

// Where the label of a box stands, and the focus rectangle with it.
RECT LabelBesideBox(const RECT& client) {
  return {kLabelLeft, 0, client.right - kLabelRightMargin, client.bottom};
}

RECT BoxAtLeft(DWORD style, const RECT& client) {
  switch (style & BS_VCENTER) {
    case BS_TOP:
      return {0, 0, kBoxWidth, kBoxHeight};
    case BS_BOTTOM:
      return {0, client.bottom - kBoxHeight, kBoxWidth, client.bottom};
    default:
      return {0, (client.bottom - kBoxHeight) / 2, kBoxWidth, (client.bottom + kBoxHeight) / 2};
  }
}

UINT FrameKind(DWORD style) {
  switch (style & BS_TYPEMASK) {
    case BS_PUSHBUTTON:
    case BS_DEFPUSHBUTTON:
      return DFCS_BUTTONPUSH | DFCS_ADJUSTRECT;
    case BS_3STATE:
    case BS_AUTO3STATE:
      return DFCS_BUTTON3STATE;
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
      return DFCS_BUTTONRADIO;
    default:
      return DFCS_BUTTONCHECK;
  }
}

UINT FrameState(DWORD style, LRESULT button_state) {
  UINT state = FrameKind(style);
  if ((style & BS_FLAT) != 0) state |= DFCS_FLAT;
  if ((style & WS_DISABLED) != 0) state |= DFCS_INACTIVE;
  const LRESULT check = button_state & kCheckMask;
  if (check == BST_CHECKED || check == BST_INDETERMINATE) {
    // A three-state box would draw a plain check mark as the state in between.
    if (check == BST_CHECKED) state &= ~UINT{DFCS_BUTTON3STATE};
    state |= IsPushLike(style) ? DFCS_PUSHED : DFCS_CHECKED;
  }
  if ((button_state & BST_PUSHED) != 0) state |= DFCS_PUSHED;
  return state;
}

UINT LabelFormat(DWORD style) {
  UINT format = (style & BS_MULTILINE) != 0 ? DT_WORDBREAK : DT_SINGLELINE;
  switch (style & BS_CENTER) {
    case BS_LEFT:
      break;
    case BS_RIGHT:
      format |= DT_RIGHT;
      break;
    case BS_CENTER:
      format |= DT_CENTER;
      break;
    default:
      if (IsPushButton(style) || IsPushLike(style)) format |= DT_CENTER;
      break;
  }
  switch (style & BS_VCENTER) {
    case BS_TOP:
      break;
    case BS_BOTTOM:
      format |= DT_BOTTOM;
      break;
    default:
      format |= DT_VCENTER;
      break;
  }
  return format;
}

}  // namespace

CheckBoxLayout LayOutCheckBox(DWORD style, LRESULT button_state, const RECT& client) {
  CheckBoxLayout layout = {.box = client,
                           .label = client,
                           .frame_state = FrameState(style, button_state),
                           .label_format = LabelFormat(style),
                           .label_within_frame = IsPushButton(style)};
  if (IsPushButton(style)) return layout;
  if (IsPushLike(style)) {
    InflateRect(&layout.label, -kPushLikeInset, -kPushLikeInset);
  } else {
    layout.box = BoxAtLeft(style, client);
    layout.label = LabelBesideBox(client);
  }
  return layout;
}

bool EmbossedCheckBox::Attach(HWND check_box) {
  if (check_box == nullptr) return false;
  window_ = check_box;
  SetControlData(check_box, this);
  // Messages may come in before the call returns; they need the procedure then.
  previous_procedure_ = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(check_box, GWLP_WNDPROC));
  const LONG_PTR replaced =
      SetWindowLongPtrA(check_box, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
  if (replaced == 0) {
    window_ = nullptr;
    return false;
  }
  previous_procedure_ = reinterpret_cast<WNDPROC>(replaced);
  return true;
}

void EmbossedCheckBox::SetColors(COLORREF main, COLORREF up_left, COLORREF down_right) {
  main_color_ = main & kColorMask;
  up_left_color_ = up_left;
  down_right_color_ = down_right;
  if (window_ != nullptr) Repaint(window_);
}

bool EmbossedCheckBox::Enable(bool enable) {
  if (window_ == nullptr) return false;
  const auto style = static_cast<DWORD>(GetWindowLongPtrA(window_, GWL_STYLE));
  const DWORD changed = enable ? style & ~DWORD{WS_DISABLED} : style | WS_DISABLED;
  if (SetWindowLongPtrA(window_, GWL_STYLE, static_cast<LONG>(changed)) == 0) return false;
  Repaint(window_);
  return true;
}

LRESULT EmbossedCheckBox::GetCheck() const {
  return SendMessageA(window_, BM_GETCHECK, 0, 0);
}

void EmbossedCheckBox::SetCheck(WPARAM check) {
  SendMessageA(window_, BM_SETCHECK, check, 0);
}

HFONT EmbossedCheckBox::Font() const {
  return reinterpret_cast<HFONT>(SendMessageA(window_, WM_GETFONT, 0, 0));
}

// Inverts the rectangle: drawn when the focus comes, gone when it leaves.
void EmbossedCheckBox::ChangeFocusRectangle() const {
  RECT client = {};
  GetClientRect(window_, &client);
  const RECT focus = LabelBesideBox(client);
  const HDC dc = GetDC(window_);
  DrawFocusRect(dc, &focus);
  ReleaseDC(window_, dc);
}

void EmbossedCheckBox::Paint() const {
  const auto style = static_cast<DWORD>(GetWindowLongPtrA(window_, GWL_STYLE));
  const LRESULT button_state = SendMessageA(window_, BM_GETSTATE, 0, 0);
  const ControlPainting painting(window_, Font());
  CheckBoxLayout layout = LayOutCheckBox(style, button_state, painting.client());
  DrawFrameControl(painting.dc(), &layout.box, DFC_BUTTON, layout.frame_state);
  if (layout.label_within_frame) layout.label = layout.box;
  if (GetFocus() == window_) DrawFocusRect(painting.dc(), &layout.label);
  layout.label.top += 1;
  PaintLabel(painting, layout, (style & WS_DISABLED) != 0);
}

void EmbossedCheckBox::PaintLabel(const ControlPainting& painting, const CheckBoxLayout& layout,
                                  bool disabled) const {
  char text[kControlTextSize] = {};
  GetWindowTextA(window_, text, kControlTextSize);
  const auto draw = [&](int move, COLORREF color) {
    painting.DrawLabel(text, layout.label, move, layout.label_format, color);
  };
  if (disabled) {
    draw(1, GetSysColor(COLOR_BTNHIGHLIGHT));
    draw(0, GetSysColor(COLOR_GRAYTEXT));
    return;
  }
  if (up_left_color_ != kNoCheckBoxLayer) draw(-1, up_left_color_);
  if (down_right_color_ != kNoCheckBoxLayer) draw(1, down_right_color_);
  draw(0, main_color_);
}

LRESULT CALLBACK EmbossedCheckBox::Procedure(HWND window, UINT message, WPARAM wparam,
                                             LPARAM lparam) {
  const auto* const check_box = ControlData<const EmbossedCheckBox>(window);
  if (check_box == nullptr) return DefWindowProcA(window, message, wparam, lparam);
  switch (message) {
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      check_box->ChangeFocusRectangle();
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      check_box->Paint();
      return 0;
    default:
      return CallWindowProcA(check_box->previous_procedure_, window, message, wparam, lparam);
  }
}

}  // namespace hostscope
