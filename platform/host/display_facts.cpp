// The keys of machine.ini that describe the screen, DirectX and the joysticks.
#include <algorithm>
#include <array>
#include <utility>

#include "platform/host/fact.h"

namespace host {
namespace {

using std::string_view;

// "640x480, 800x600" for the depth that the key names.
std::string ReadDisplayModes(Machine& machine, string_view key, string_view value) {
  const std::optional<std::uint64_t> bits = Number(key, 32);
  if (!bits) return "the key is no number of bits per pixel";
  do {
    string_view size = TakeItem(value, ',');
    const std::optional<WORD> width = TakeNumber(size, 'x');
    const std::optional<WORD> height = width ? TakeNumber(size, '\0') : std::nullopt;
    if (!height) return "the value is no list of sizes (\"640x480, 800x600\")";
    machine.display.modes.push_back({*width, *height, static_cast<DWORD>(*bits)});
  } while (!value.empty());
  return "";
}

std::string ReadRelease(Machine& machine, string_view, string_view value) {
  constexpr std::pair<string_view, DWORD> kReleases[] = {
      {"none", 0},  {"1", 0x100},   {"2", 0x200}, {"3", 0x300}, {"5", 0x500},
      {"6", 0x600}, {"6.1", 0x601}, {"7", 0x700}, {"8", 0x800}};
  for (const auto& [name, release] : kReleases) {
    if (value != name) continue;
    StateDirectX(machine, release);
    return "";
  }
  return "the value is neither \"none\" nor one of 1, 2, 3, 5, 6, 6.1, 7 and 8";
}

std::string ReadConnectedJoysticks(Machine& machine, string_view, string_view value) {
  while (!value.empty()) {
    const std::optional<std::uint64_t> number = Number(TakeItem(value, ','));
    if (!number) return "the value is no list of joystick numbers";
    machine.joysticks.connected.push_back(static_cast<UINT>(*number));
  }
  return "";
}

constexpr Fact kDisplayFacts[] = {
    {"Screen", "Width", Read<&Machine::desktop, &Desktop::screen_size, &SIZE::cx>},
    {"Screen", "Height", Read<&Machine::desktop, &Desktop::screen_size, &SIZE::cy>},
    {"Screen", "BitsPerPixel", Read<&Machine::desktop, &Desktop::bits_per_pixel>},
    {"Screen", "SystemFontHeight", Read<&Machine::display, &Display::system_font_height>},
    {"DisplayModes", "*", ReadDisplayModes},
    {"DirectX", "Release", ReadRelease},
    {"DirectX", "Accelerates3D", Read<&Machine::direct_x, &DirectX::accelerates_3d>},
    {"Joysticks", "Slots", Read<&Machine::joysticks, &Joysticks::slots>},
    {"Joysticks", "Connected", ReadConnectedJoysticks},
};

}  // namespace

std::span<const Fact> DisplayFacts() {
  return kDisplayFacts;
}

}  // namespace host
