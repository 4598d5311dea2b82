// What the dialog's own controls have in common: their fonts, their window classes and the frame of
// their painting.
#pragma once

#include "platform/win32.h"

namespace hostscope {

// Room for a control's text, terminator included.
inline constexpr int kControlTextSize = 256;

// A font of its own, deleted by Release.
class OwnedFont {
 public:
  OwnedFont() = default;
  explicit OwnedFont(HFONT font) : font_(font) {}
  ~OwnedFont() { Release(); }
  OwnedFont(const OwnedFont&) = delete;
  OwnedFont& operator=(const OwnedFont&) = delete;

  // Null when there is none.
  HFONT get() const { return font_; }
  // Takes the font; what was held is deleted first.
  void Take(HFONT font) {
    Release();
    font_ = font;
  }
  void Release() {
    if (font_ != nullptr) DeleteObject(font_);
    font_ = nullptr;
  }

 private:
  HFONT font_ = nullptr;
};

// Bits of a font's style byte.
inline constexpr BYTE kItalicStyle = 1;
inline constexpr BYTE kUnderlineStyle = 2;
inline constexpr BYTE kStrikeOutStyle = 4;

struct FontChoice {
  const char* face;
  int points;
  int width;  // 0: the face's own
  BYTE style;
  int weight;
};

// Height of a font of so many points as the font functions take it. The system's setting for large
// fonts does not count: a point is always 1/72 of 96 pixels.
int FontHeight(int points);

// Null when the system refuses.
HFONT CreateControlFont(const FontChoice& choice, DWORD quality);

struct ControlPlace {
  int x;
  int y;
  int width;
  int height;
};

struct ControlWindow {
  const char* class_name;
  WNDPROC procedure;
  HCURSOR cursor;
  DWORD style;
  int id;
  ControlPlace place;
};

// Registers the window class, unless an earlier control has, creates the window with the parent's
// instance and hangs `data` on it. Null when the system refuses.
HWND CreateControlWindow(HWND parent, const ControlWindow& control, void* data);

// The instance that the window was created with.
HINSTANCE InstanceOf(HWND window);

// What hangs on the control's window; null before it is created to its end and after its
// WM_DESTROY.
template <typename Data>
Data* ControlData(HWND window) {
  return reinterpret_cast<Data*>(GetWindowLongPtrA(window, GWLP_USERDATA));
}
void SetControlData(HWND window, void* data);

// The window procedure of a control class. Painting goes to the control's Paint, other messages to
// its Handle, which says whether it has dealt with one (the answer is 0 then); the rest is the
// system's.
template <typename Control>
class ControlMessages {
 public:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* const control = ControlData<Control>(window);
    if (control == nullptr) return DefWindowProcA(window, message, wparam, lparam);
    if (message == WM_PAINT) {
      control->Paint();
      return 0;
    }
    if (message == WM_DESTROY) {
      SetControlData(window, nullptr);
      return 0;
    }
    if (control->Handle(message, wparam, lparam)) return 0;
    return DefWindowProcA(window, message, wparam, lparam);
  }
};

// Has the window painted again over what it shows now.
void Repaint(HWND window);

// Whether the point in a mouse message's second parameter lies in the window's client rectangle.
bool IsInClientArea(HWND window, LPARAM point);

// One painting of a control: from BeginPaint to EndPaint, texts transparent and in the font given.
class ControlPainting {
 public:
  ControlPainting(HWND window, HFONT font);
  ~ControlPainting();
  ControlPainting(const ControlPainting&) = delete;
  ControlPainting& operator=(const ControlPainting&) = delete;

  HDC dc() const { return dc_; }
  const RECT& client() const { return client_; }
  // The text in the rectangle moved by so many pixels to the right and down.
  void DrawLabel(const char* text, RECT rectangle, int move, UINT format, COLORREF color) const;

 private:
  HWND window_;
  PAINTSTRUCT paint_ = {};
  HDC dc_;
  RECT client_ = {};
  HGDIOBJ previous_font_ = nullptr;
};

}  // namespace hostscope
