// What the display and its fonts are like.
#include "platform/host/desktop_state.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"

namespace host {
namespace {

// With 16 colours the display adapter has four planes of one bit.
constexpr int kPlanarBits = 4;

int DisplayCapability(const Desktop& desktop, int index) {
  const bool planar = desktop.bits_per_pixel == kPlanarBits;
  switch (index) {
    case HORZRES:
      return desktop.screen_size.cx;
    case VERTRES:
      return desktop.screen_size.cy;
    case BITSPIXEL:
      return planar ? 1 : desktop.bits_per_pixel;
    case PLANES:
      return planar ? kPlanarBits : 1;
    default:
      return 0;
  }
}

}  // namespace
}  // namespace host

HDC CreateICA(LPCSTR driver, LPCSTR, LPCSTR, const DEVMODEA*) {
  if (host::CallFails("CreateICA")) return nullptr;
  if (driver == nullptr || !host::EqualNoCase(driver, "DISPLAY")) return nullptr;
  const HDC made = host::OpenDc(nullptr);
  host::FindDc(made)->information = true;
  return made;
}

int GetDeviceCaps(HDC dc, int index) {
  if (host::CallFails("GetDeviceCaps") || !host::FindDc(dc)) return 0;
  return host::DisplayCapability(host::CurrentMachine().desktop, index);
}

BOOL GetTextMetricsA(HDC dc, LPTEXTMETRICA metrics) {
  if (host::CallFails("GetTextMetricsA")) return FALSE;
  const auto found = host::FindDc(dc);
  if (!found) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  const LOGFONTA font = host::FontRecord(found->font);
  *metrics = {};
  metrics->tmHeight = host::LineHeight(font);
  metrics->tmAscent = metrics->tmHeight * 4 / 5;
  metrics->tmDescent = metrics->tmHeight - metrics->tmAscent;
  metrics->tmWeight = font.lfWeight;
  return TRUE;
}
