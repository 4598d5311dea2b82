#include "app/progress_list.h"

#include <algorithm>

#include "util/text.h"

namespace hostscope {
namespace {

inline constexpr int kListFontPoints = 8;

// How far the Down key goes: what the list shows at once.
inline constexpr LRESULT kDownStep = 16;

HFONT CreateListFont() {
  LOGFONTA font = {};
  font.lfHeight = FontHeight(kListFontPoints);
  font.lfWeight = FW_NORMAL;
  font.lfCharSet = DEFAULT_CHARSET;
  font.lfOutPrecision = OUT_TT_PRECIS;
  font.lfClipPrecision = CLIP_DEFAULT_PRECIS;
  font.lfQuality = DRAFT_QUALITY;
  font.lfPitchAndFamily = FF_MODERN;
  CopyText(font.lfFaceName, "Lucida Console");
  return CreateFontIndirectA(&font);
}

}  // namespace

void ProgressList::Attach(HWND list_box) {
  window_ = list_box;
  font_.Take(CreateListFont());
  SendMessageA(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
  SetControlData(window_, this);
  previous_procedure_ = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
}

LRESULT ProgressList::Ask(UINT message, WPARAM wparam, LPARAM lparam) const {
  return CallWindowProcA(previous_procedure_, window_, message, wparam, lparam);
}

void ProgressList::ScrollTo(LRESULT line) const {
  RECT client = {};
  GetClientRect(window_, &client);
  const LRESULT line_height = std::max<LRESULT>(Ask(LB_GETITEMHEIGHT), 1);
  const LRESULT lowest_top = line - std::max<LRESULT>(client.bottom / line_height, 1) + 1;
  const LRESULT top = Ask(LB_GETTOPINDEX);
  if (top > line) Ask(LB_SETTOPINDEX, static_cast<WPARAM>(line));
  if (top < lowest_top) Ask(LB_SETTOPINDEX, static_cast<WPARAM>(lowest_top));
}

// Not every system gives a list without a selection a current line: Wine refuses the line, does not
// scroll to it, and yet highlights it. There the line is kept here, and the list box knows of none.
LRESULT ProgressList::SetCurrentLine(WPARAM wparam) {
  const LRESULT answer = Ask(LB_SETCURSEL, wparam);
  const auto line = static_cast<LRESULT>(wparam);
  refused_line_ = -1;
  if (answer != LB_ERR || line < 0 || line >= Ask(LB_GETCOUNT)) return answer;
  refused_line_ = line;
  Ask(LB_SETCURSEL, static_cast<WPARAM>(-1));
  ScrollTo(line);
  return line;
}

LRESULT ProgressList::CurrentLine() const {
  return refused_line_ >= 0 && refused_line_ < Ask(LB_GETCOUNT) ? refused_line_ : Ask(LB_GETCURSEL);
}

void ProgressList::MakeCurrent(LRESULT line) {
  SendMessageA(window_, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
}

void ProgressList::PressKey(WPARAM key) {
  if (worker_.running()) return;
  const LRESULT current = SendMessageA(window_, LB_GETCURSEL, 0, 0);
  const LRESULT last = SendMessageA(window_, LB_GETCOUNT, 0, 0) - 1;
  switch (key) {
    case VK_UP:
      if (current > 0) MakeCurrent(current - 1);
      return;
    case VK_DOWN:
      MakeCurrent(current + kDownStep < last ? current + kDownStep : last);
      return;
    case VK_PRIOR:
      MakeCurrent(0);
      return;
    case VK_NEXT:
      MakeCurrent(last);
      return;
    default:
      EndDialog(GetParent(window_), 0);
      return;
  }
}

void ProgressList::PressMouse(LPARAM point) {
  SetFocus(window_);
  if (worker_.running()) return;
  RECT client = {};
  GetClientRect(window_, &client);
  const auto y = static_cast<SHORT>(HIWORD(static_cast<ULONG_PTR>(point)));
  MakeCurrent(2 * y < client.bottom ? 0 : SendMessageA(window_, LB_GETCOUNT, 0, 0) - 1);
}

LRESULT ProgressList::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      return 0;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS;
    case WM_KEYDOWN:
      PressKey(wparam);
      return 0;
    case WM_LBUTTONDOWN:
      PressMouse(lparam);
      return 0;
    case LB_SETCURSEL:
      return SetCurrentLine(wparam);
    case LB_GETCURSEL:
      return CurrentLine();
    default:
      return Ask(message, wparam, lparam);
  }
}

LRESULT CALLBACK ProgressList::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* const list = ControlData<ProgressList>(window);
  if (list == nullptr) return DefWindowProcA(window, message, wparam, lparam);
  return list->Handle(message, wparam, lparam);
}

}  // namespace hostscope
