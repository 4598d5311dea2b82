// Joysticks (WINMM).
#include <algorithm>

#include "platform/host/machine.h"
#include "platform/host/winmm.h"

namespace host {
namespace {

const LayerLibrary kJoysticks({.name = "WINMM.DLL",
                               .exports = {HOST_EXPORT(joyGetNumDevs), HOST_EXPORT(joyGetPos)}});

}  // namespace
}  // namespace host

UINT WINAPI joyGetNumDevs() {
  if (host::CallFails("joyGetNumDevs")) return 0;
  return host::CurrentMachine().joysticks.slots;
}

MMRESULT WINAPI joyGetPos(UINT joystick, LPJOYINFO position) {
  if (const DWORD error = host::CallError("joyGetPos")) return error;
  const host::Joysticks& joysticks = host::CurrentMachine().joysticks;
  if (position == nullptr) return MMSYSERR_INVALPARAM;
  if (joystick >= joysticks.slots) return JOYERR_PARMS;
  const auto& connected = joysticks.connected;
  if (std::find(connected.begin(), connected.end(), joystick) == connected.end())
    return JOYERR_UNPLUGGED;
  *position = {0x7FFF, 0x7FFF, 0x7FFF, 0};
  return JOYERR_NOERROR;
}
