// Painting: update rectangles, device contexts of windows, the drawing functions of USER32.

#include <cstring>

#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

void Shrink(RECT& rectangle, int width) {
  rectangle = {rectangle.left + width, rectangle.top + width, rectangle.right - width,
               rectangle.bottom - width};
}

bool IsDc(HDC dc) {
  if (FindDc(dc)) return true;
  SetLastError(ERROR_INVALID_HANDLE);
  return false;
}

// The windows that wait for painting in the window and below, outer ones first.
void CollectUnpainted(const DesktopState& state, HWND handle, std::vector<HWND>& unpainted) {
  const WindowPointer window = state.Find(handle);
  if (!window || !state.IsVisible(*window)) return;
  if (window->update) unpainted.push_back(handle);
  for (const HWND child : window->children)
    CollectUnpainted(state, child, unpainted);
}

}  // namespace

void InvalidateWindow(HWND handle, bool erase) {
  const LockedDesktop desktop;
  const WindowPointer window = desktop->Find(handle);
  if (window) desktop->Invalidate(*window, nullptr, erase, false);
}

HDC StartPainting(HWND handle, PAINTSTRUCT& paint) {
  paint = {};
  bool erase = false;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop.Find(handle);
    if (!window) return nullptr;
    paint.rcPaint = window->update.value_or(RECT{});
    erase = window->erase_pending;
    window->update.reset();
    window->erase_pending = false;
    desktop->Changed();
  }
  paint.hdc = OpenDc(handle);
  if (erase) {
    paint.fErase = Send(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint.hdc), 0) == 0;
  }
  return paint.hdc;
}

void FinishPainting(const PAINTSTRUCT& paint) {
  CloseDc(paint.hdc);
}

void Fill(HDC dc, const RECT& rectangle, HBRUSH brush) {
  const std::optional<COLORREF> color = BrushColor(brush);
  if (!color) return;
  Record(dc, {.function = "FillRect", .rectangle = rectangle, .fill_color = *color});
}

void DrawLine(HDC dc, const std::string& text, const RECT& rectangle, UINT format) {
  Record(dc, {.function = "DrawTextA", .rectangle = rectangle, .text = text, .flags = format});
}

HBRUSH AskForColors(UINT message, HWND control, HDC dc) {
  HWND parent = nullptr;
  {
    const LockedDesktop desktop;
    const WindowPointer window = desktop->Find(control);
    if (window) parent = window->parent;
  }
  const LRESULT answer =
      Send(parent, message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(control));
  if (answer != 0) return reinterpret_cast<HBRUSH>(answer);
  return reinterpret_cast<HBRUSH>(DefaultProcedure(control, message, reinterpret_cast<WPARAM>(dc),
                                                   reinterpret_cast<LPARAM>(control)));
}

COLORREF SystemColor(int index) {
  switch (index) {
    case COLOR_WINDOW:
    case COLOR_BTNHIGHLIGHT:
      return 0xFFFFFF;
    case COLOR_BTNFACE:
      return 0xC0C0C0;
    case COLOR_GRAYTEXT:
      return 0x808080;
    default:
      return 0;
  }
}

int SystemMetric(int index) {
  const SIZE screen = CurrentMachine().desktop.screen_size;
  switch (index) {
    case SM_CXSCREEN:
      return screen.cx;
    case SM_CYSCREEN:
      return screen.cy;
    case SM_CYCAPTION:
      return 19;
    case SM_CXBORDER:
    case SM_CYBORDER:
      return 1;
    case SM_CXDLGFRAME:
    case SM_CYDLGFRAME:
      return 3;
    case SM_CXICON:
    case SM_CYICON:
      return 32;
    case SM_CXEDGE:
    case SM_CYEDGE:
      return 2;
    default:
      return 0;
  }
}

}  // namespace host

using host::CallFails;
using host::LockedDesktop;
using host::WindowPointer;

BOOL InvalidateRect(HWND handle, const RECT* rectangle, BOOL erase) {
  if (CallFails("InvalidateRect")) return FALSE;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return FALSE;
  desktop->Invalidate(*window, rectangle, erase != FALSE, false);
  return TRUE;
}

BOOL UpdateWindow(HWND handle) {
  if (CallFails("UpdateWindow")) return FALSE;
  std::vector<HWND> unpainted;
  {
    const LockedDesktop desktop;
    if (!desktop.Find(handle)) return FALSE;
    host::CollectUnpainted(*desktop, handle, unpainted);
  }
  for (const HWND window : unpainted)
    host::Send(window, WM_PAINT, 0, 0);
  return TRUE;
}

BOOL GetUpdateRect(HWND handle, LPRECT rectangle, BOOL) {
  if (CallFails("GetUpdateRect")) return FALSE;
  const LockedDesktop desktop;
  const WindowPointer window = desktop.Find(handle);
  if (!window) return FALSE;
  if (rectangle != nullptr) *rectangle = window->update.value_or(RECT{});
  return window->update.has_value();
}

HDC BeginPaint(HWND window, LPPAINTSTRUCT paint) {
  if (CallFails("BeginPaint")) return nullptr;
  return host::StartPainting(window, *paint);
}

BOOL EndPaint(HWND, const PAINTSTRUCT* paint) {
  if (CallFails("EndPaint")) return FALSE;
  host::FinishPainting(*paint);
  return TRUE;
}

HDC GetDC(HWND window) {
  if (CallFails("GetDC")) return nullptr;
  if (window != nullptr) {
    const LockedDesktop desktop;
    if (!desktop.Find(window)) return nullptr;
  }
  return host::OpenDc(window);
}

int ReleaseDC(HWND, HDC dc) {
  if (CallFails("ReleaseDC")) return 0;
  const auto found = host::FindDc(dc);
  return found && !found->IsCreated() && host::CloseDc(dc);
}

int DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rectangle, UINT format) {
  if (CallFails("DrawTextA") || text == nullptr || !host::IsDc(dc)) return 0;
  const std::string drawn(text, length < 0 ? std::strlen(text) : static_cast<std::size_t>(length));
  host::DrawLine(dc, drawn, *rectangle, format);
  return host::LineHeight(host::FontRecord(host::FindDc(dc)->font));
}

BOOL DrawEdge(HDC dc, LPRECT rectangle, UINT edge, UINT flags) {
  if (CallFails("DrawEdge") || !host::IsDc(dc)) return FALSE;
  host::Record(dc, {.function = "DrawEdge", .rectangle = *rectangle, .kind = edge, .flags = flags});
  if ((flags & BF_ADJUST) != 0) host::Shrink(*rectangle, 2);
  return TRUE;
}

BOOL DrawFrameControl(HDC dc, LPRECT rectangle, UINT kind, UINT state) {
  if (CallFails("DrawFrameControl") || !host::IsDc(dc)) return FALSE;
  host::Record(
      dc, {.function = "DrawFrameControl", .rectangle = *rectangle, .kind = kind, .flags = state});
  if ((state & DFCS_ADJUSTRECT) != 0) host::Shrink(*rectangle, 2);
  return TRUE;
}

BOOL DrawFocusRect(HDC dc, const RECT* rectangle) {
  if (CallFails("DrawFocusRect") || !host::IsDc(dc)) return FALSE;
  host::Record(dc, {.function = "DrawFocusRect", .rectangle = *rectangle});
  return TRUE;
}

int FillRect(HDC dc, const RECT* rectangle, HBRUSH brush) {
  if (CallFails("FillRect") || !host::IsDc(dc)) return 0;
  host::Fill(dc, *rectangle, brush);
  return 1;
}

DWORD GetSysColor(int index) {
  if (CallFails("GetSysColor")) return 0;
  return host::SystemColor(index);
}

int GetSystemMetrics(int index) {
  if (CallFails("GetSystemMetrics")) return 0;
  return host::SystemMetric(index);
}

BOOL OffsetRect(LPRECT rectangle, int x, int y) {
  if (CallFails("OffsetRect")) return FALSE;
  *rectangle = {rectangle->left + x, rectangle->top + y, rectangle->right + x,
                rectangle->bottom + y};
  return TRUE;
}

BOOL InflateRect(LPRECT rectangle, int x, int y) {
  if (CallFails("InflateRect")) return FALSE;
  *rectangle = {rectangle->left - x, rectangle->top - y, rectangle->right + x,
                rectangle->bottom + y};
  return TRUE;
}

BOOL PtInRect(const RECT* rectangle, POINT point) {
  if (CallFails("PtInRect")) return FALSE;
  return point.x >= rectangle->left && point.x < rectangle->right && point.y >= rectangle->top &&
         point.y < rectangle->bottom;
}
