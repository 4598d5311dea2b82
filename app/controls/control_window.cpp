#include "app/controls/control_window.h"

#include <array>

#include "util/library.h"

namespace hostscope {
namespace {

using GetClassInfoExFunction = BOOL(WINAPI*)(HINSTANCE, LPCSTR, LPWNDCLASSEXA);
using RegisterClassExFunction = ATOM(WINAPI*)(const WNDCLASSEXA*);
constexpr std::array<const char*, 2> kClassFunctions = {"GetClassInfoExA", "RegisterClassExA"};
enum ClassFunction : std::size_t { kGetClassInfoEx, kRegisterClassEx };

void RegisterByExtendedRecord(HINSTANCE instance, const ControlWindow& control,
                              GetClassInfoExFunction get_info,
                              RegisterClassExFunction register_class) {
  WNDCLASSEXA record = {};
  record.cbSize = sizeof record;
  if (get_info(instance, control.class_name, &record)) return;
  record = {};
  record.cbSize = sizeof record;
  record.lpfnWndProc = control.procedure;
  record.hInstance = instance;
  record.hCursor = control.cursor;
  record.lpszClassName = control.class_name;
  register_class(&record);
}

void RegisterByRecord(HINSTANCE instance, const ControlWindow& control) {
  WNDCLASSA record = {};
  if (GetClassInfoA(instance, control.class_name, &record)) return;
  record = {};
  record.lpfnWndProc = control.procedure;
  record.hInstance = instance;
  record.hCursor = control.cursor;
  record.lpszClassName = control.class_name;
  RegisterClassA(&record);
}

// The extended functions are younger than the oldest systems.
void RegisterControlClass(HINSTANCE instance, const ControlWindow& control) {
  BoundLibrary<kClassFunctions.size()> user;
  if (user.Bind("USER32.DLL", kClassFunctions)) {
    RegisterByExtendedRecord(instance, control, user.Get<GetClassInfoExFunction>(kGetClassInfoEx),
                             user.Get<RegisterClassExFunction>(kRegisterClassEx));
  } else {
    RegisterByRecord(instance, control);
  }
}

}  // namespace

int FontHeight(int points) {
  return -MulDiv(points, 96, 72);
}

HFONT CreateControlFont(const FontChoice& choice, DWORD quality) {
  const auto bit = [&choice](BYTE style) -> DWORD { return (choice.style & style) != 0; };
  return CreateFontA(FontHeight(choice.points), choice.width, 0, 0, choice.weight,
                     bit(kItalicStyle), bit(kUnderlineStyle), bit(kStrikeOutStyle), OEM_CHARSET,
                     OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, quality, DEFAULT_PITCH | FF_DONTCARE,
                     choice.face);
}

HWND CreateControlWindow(HWND parent, const ControlWindow& control, void* data) {
  const HINSTANCE instance = InstanceOf(parent);
  RegisterControlClass(instance, control);
  const ControlPlace& place = control.place;
  const HWND window = CreateWindowExA(
      0, control.class_name, "", control.style, place.x, place.y, place.width, place.height, parent,
      reinterpret_cast<HMENU>(static_cast<INT_PTR>(control.id)), instance, nullptr);
  if (window != nullptr) SetControlData(window, data);
  return window;
}

HINSTANCE InstanceOf(HWND window) {
  return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

void SetControlData(HWND window, void* data) {
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(data));
}

void Repaint(HWND window) {
  InvalidateRect(window, nullptr, FALSE);
}

bool IsInClientArea(HWND window, LPARAM point) {
  const auto packed = static_cast<ULONG_PTR>(point);
  RECT client = {};
  GetClientRect(window, &client);
  return PtInRect(&client, POINT{static_cast<SHORT>(LOWORD(packed)),
                                 static_cast<SHORT>(HIWORD(packed))}) != 0;
}

ControlPainting::ControlPainting(HWND window, HFONT font)
    : window_(window), dc_(BeginPaint(window, &paint_)) {
  GetClientRect(window, &client_);
  SetBkMode(dc_, TRANSPARENT);
  if (font != nullptr) previous_font_ = SelectObject(dc_, font);
}

ControlPainting::~ControlPainting() {
  if (previous_font_ != nullptr) SelectObject(dc_, previous_font_);
  EndPaint(window_, &paint_);
}

void ControlPainting::DrawLabel(const char* text, RECT rectangle, int move, UINT format,
                                COLORREF color) const {
  OffsetRect(&rectangle, move, move);
  SetTextColor(dc_, color);
  DrawTextA(dc_, text, -1, &rectangle, format);
}

}  // namespace hostscope
