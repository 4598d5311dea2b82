// The keys of machine.ini that describe the screen, DirectX and the joysticks.
#include <algorithm>
#include <array>
#include <utility>

#include "platform/host/fact.h"

namespace host {
namespace {

using std::string_view;

std::optional<DWORD> Depth(string_view text) {
  const std::uint64_t depths[] = {1, 4, 8, 16, 24, 32};
  const std::optional<std::uint64_t> bits = Number(text);
  const bool is_one = bits && std::find(depths, std::end(depths), *bits) != std::end(depths);
  return is_one ? std::optional(static_cast<DWORD>(*bits)) : std::nullopt;
}

std::string ReadScreenDepth(Machine& machine, string_view, string_view value) {
  const std::optional<DWORD> bits = Depth(value);
  if (!bits) return "the value is no number of bits per pixel (1, 4, 8, 16, 24 or 32)";
  machine.desktop.bits_per_pixel = static_cast<int>(*bits);
  return "";
}

template <LONG SIZE::*part>
std::string ReadScreenSize(Machine& machine, string_view key, string_view value) {
  std::string error = Read<&Machine::desktop, &Desktop::screen_size, part>(machine, key, value);
  const bool nothing = error.empty() && machine.desktop.screen_size.*part == 0;
  return nothing ? "the screen has at least one pixel" : error;
}

// "640x480, 800x600" for the depth that the key names.
std::string ReadDisplayModes(Machine& machine, string_view key, string_view value) {
  const std::optional<DWORD> bits = Depth(key);
  if (!bits) return "the key is no number of bits per pixel (1, 4, 8, 16, 24 or 32)";
  do {
    string_view size = TakeItem(value, ',');
    const std::optional<WORD> width = TakeNumber(size, 'x');
    const std::optional<WORD> height = width ? TakeNumber(size, '\0') : std::nullopt;
    if (!height || *width == 0 || *height == 0)
      return "the value is no list of sizes (\"640x480, 800x600\")";
    machine.display.modes.push_back({*width, *height, *bits});
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
    {"Screen", "Width", ReadScreenSize<&SIZE::cx>},
    {"Screen", "Height", ReadScreenSize<&SIZE::cy>},
    {"Screen", "BitsPerPixel", ReadScreenDepth},
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
