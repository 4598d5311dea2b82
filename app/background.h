#pragma once

#include "platform/win32.h"

namespace hostscope {

// The picture that tiles the dialog, ready for copying.
class Background {
 public:
  Background() = default;
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  // Loads the bitmap of that number from the instance's resources.
  void Load(HWND window, HINSTANCE instance, int bitmap_id);
  // Covers the window's client rectangle with copies, from the top left corner on.
  void Paint(HWND window) const;
  void Release();

 private:
  void Tile(HDC dc, const RECT& client) const;

  HWND window_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  LONG width_ = 0;
  LONG height_ = 0;
  HDC window_dc_ = nullptr;
  HDC memory_dc_ = nullptr;
  HGDIOBJ previous_bitmap_ = nullptr;
};

}  // namespace hostscope
