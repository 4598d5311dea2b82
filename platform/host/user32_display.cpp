// The desktop's own window and the modes of the display.
#include "platform/host/desktop_state.h"
#include "platform/host/machine.h"

namespace host {
namespace {

const LayerLibrary kUser32({.name = "USER32.DLL",
                            .loaded_at_start = true,
                            .exports = {HOST_EXPORT(EnumDisplaySettingsA)}});

HWND TheDesktopWindow() {
  return reinterpret_cast<HWND>(kDesktopWindow);
}

std::vector<DisplayMode> Modes(const Machine& machine) {
  if (!machine.display.modes.empty()) return machine.display.modes;
  const Desktop& desktop = machine.desktop;
  return {{static_cast<DWORD>(desktop.screen_size.cx), static_cast<DWORD>(desktop.screen_size.cy),
           static_cast<DWORD>(desktop.bits_per_pixel)}};
}

}  // namespace
}  // namespace host

HWND GetDesktopWindow() {
  if (host::CallFails("GetDesktopWindow")) return nullptr;
  return host::TheDesktopWindow();
}

HDC GetWindowDC(HWND window) {
  if (host::CallFails("GetWindowDC")) return nullptr;
  if (window == nullptr || window == host::TheDesktopWindow()) return host::OpenDc(nullptr);
  const host::LockedDesktop desktop;
  return desktop.Find(window) ? host::OpenDc(window) : nullptr;
}

BOOL EnumDisplaySettingsA(LPCSTR device, DWORD index, LPDEVMODEA mode) {
  if (host::CallFails("EnumDisplaySettingsA")) return FALSE;
  const std::vector<host::DisplayMode> modes = host::Modes(host::CurrentMachine());
  if (device != nullptr || index >= modes.size() || mode->dmSize != sizeof *mode) return FALSE;
  mode->dmFields = DM_BITSPERPEL | DM_PELSWIDTH | DM_PELSHEIGHT;
  mode->dmBitsPerPel = modes[index].bits_per_pixel;
  mode->dmPelsWidth = modes[index].width;
  mode->dmPelsHeight = modes[index].height;
  return TRUE;
}
