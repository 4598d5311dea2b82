#include "probes/devices/joysticks.h"

#include "util/library.h"
#include "util/text.h"

namespace hostscope {
namespace {

constexpr std::array<const char*, 2> kFunctions = {"joyGetNumDevs", "joyGetPos"};
using CountFunction = UINT(WINAPI*)();
using PositionFunction = MMRESULT(WINAPI*)(UINT joystick, JOYINFO* position);

}  // namespace

bool CountJoysticks(std::uint32_t& count) {
  count = 0;
  BoundLibrary<kFunctions.size()> multimedia;
  if (!multimedia.Bind("WINMM.DLL", kFunctions)) return true;
  const UINT slots = multimedia.Get<CountFunction>(0)();
  for (UINT joystick = 0; joystick < slots; ++joystick) {
    JOYINFO position = {};
    if (multimedia.Get<PositionFunction>(1)(joystick, &position) == 0) ++count;
  }
  return true;
}

bool FormatJoysticks(ProbeContext&, std::span<char> text) {
  std::uint32_t count = 0;
  CountJoysticks(count);
  CopyText(text.data(), text.size(), count != 0 ? "present" : "not present");
  return true;
}

}  // namespace hostscope
