#include "app/background.h"

#include <algorithm>

namespace hostscope {

void Background::Load(HWND window, HINSTANCE instance, int bitmap_id) {
  BITMAP record = {};
  window_ = window;
  bitmap_ = LoadBitmapA(instance, MAKEINTRESOURCEA(bitmap_id));
  if (bitmap_ != nullptr && GetObjectA(bitmap_, sizeof record, &record) != 0) {
    width_ = record.bmWidth;
    height_ = record.bmHeight;
  }
  window_dc_ = GetDC(window);
  memory_dc_ = CreateCompatibleDC(window_dc_);
  previous_bitmap_ = SelectObject(memory_dc_, bitmap_);
}

void Background::Paint(HWND window) const {
  PAINTSTRUCT paint = {};
  RECT client = {};
  const HDC dc = BeginPaint(window, &paint);
  GetClientRect(window, &client);
  if (width_ > 0 && height_ > 0) Tile(dc, client);
  EndPaint(window, &paint);
}

void Background::Tile(HDC dc, const RECT& client) const {
  for (LONG y = 0; y < client.bottom; y += height_) {
    for (LONG x = 0; x < client.right; x += width_) {
      BitBlt(dc, x, y, std::min(width_, client.right - x), std::min(height_, client.bottom - y),
             memory_dc_, 0, 0, SRCCOPY);
    }
  }
}

void Background::Release() {
  if (previous_bitmap_ != nullptr) SelectObject(memory_dc_, previous_bitmap_);
  if (bitmap_ != nullptr) DeleteObject(bitmap_);
  if (memory_dc_ != nullptr) DeleteDC(memory_dc_);
  if (window_dc_ != nullptr) ReleaseDC(window_, window_dc_);
  previous_bitmap_ = nullptr;
  bitmap_ = nullptr;
  memory_dc_ = nullptr;
  window_dc_ = nullptr;
}

}  // namespace hostscope
