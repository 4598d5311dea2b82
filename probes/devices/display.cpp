#include "probes/devices/display.h"

#include <algorithm>

#include "util/library.h"
#include "util/text.h"

namespace hostscope {
namespace {

// The display's information context.
class DisplayContext {
 public:
  DisplayContext() : dc_(CreateICA("DISPLAY", nullptr, nullptr, nullptr)) {}
  ~DisplayContext() {
    if (open()) DeleteDC(dc_);
  }
  DisplayContext(const DisplayContext&) = delete;
  DisplayContext& operator=(const DisplayContext&) = delete;

  bool open() const { return dc_ != nullptr; }
  std::uint32_t Capability(int index) const {
    return static_cast<std::uint32_t>(GetDeviceCaps(dc_, index));
  }

 private:
  HDC dc_;
};

// Bound at run time: not every system that the program starts on is sure to have it.
constexpr std::array<const char*, 1> kModeFunctions = {"EnumDisplaySettingsA"};
using EnumDisplaySettingsFunction = BOOL(WINAPI*)(LPCSTR device, DWORD index, DEVMODEA* mode);

constexpr WORD kModeSize = 156;
static_assert(sizeof(DEVMODEA) == kModeSize);
// More than any display has: a driver that never comes to the end of its modes is not asked for
// ever.
constexpr DWORD kMostModes = 0x10000;

// Calls `visit` with each mode in the driver's order, the first kMostModes of them; whether there
// was one.
template <typename Visit>
bool ForEachDisplayMode(Visit visit) {
  BoundLibrary<kModeFunctions.size()> user;
  if (!user.Bind("USER32.DLL", kModeFunctions)) return false;
  const auto enum_display_settings = user.Get<EnumDisplaySettingsFunction>(0);
  for (DWORD index = 0; index < kMostModes; ++index) {
    DEVMODEA mode = {};
    mode.dmSize = kModeSize;
    if (enum_display_settings(nullptr, index, &mode) == 0) return index != 0;
    visit(mode);
  }
  return true;
}

// Long enough for every part: two words and two numbers.
constexpr std::size_t kPartSize = 64;

// One of the two parts of a line: the key that turns it on, and where its value comes from.
template <typename Value>
struct Part {
  Switch key;
  bool (*find)(Value& value);
};

void FormatPart(char (&part)[kPartSize], const char* name, const DisplaySize& size) {
  wsprintfA(part, "%s: %ux%u", name, static_cast<unsigned>(size.width),
            static_cast<unsigned>(size.height));
}

void FormatPart(char (&part)[kPartSize], const char* name, std::uint32_t bits) {
  wsprintfA(part, "%s: %u", name, static_cast<unsigned>(bits));
}

// The line of a value now and at most, with the parts whose keys are on, the current one first. A
// part that cannot be had shows zeros; false when neither can.
template <typename Value>
bool WriteNowAndMost(ItemRun& run, const char* label, const Part<Value>& now,
                     const Part<Value>& most) {
  run.report.BeginItem(label);
  Value value_now = {}, value_most = {};
  const bool has_most = most.find(value_most);
  const bool has_now = now.find(value_now);
  if (has_most || has_now) {
    char current[kPartSize], maximum[kPartSize];
    FormatPart(current, "current", value_now);
    FormatPart(maximum, "maximum", value_most);
    const bool writes_now = run.settings.*now.key != 0;
    if (writes_now && run.settings.*most.key != 0) {
      run.report.WriteFormatted("%s, %s", current, maximum);
    } else {
      run.report.WriteText(writes_now ? current : maximum);
    }
  }
  run.report.WriteText(kLineEnd);
  return has_most || has_now;
}

}  // namespace

bool ReadCurrentResolution(std::uint32_t& width, std::uint32_t& height) {
  width = height = 0;
  const DisplayContext display;
  if (!display.open()) return false;
  width = display.Capability(HORZRES);
  height = display.Capability(VERTRES);
  return true;
}

bool ReadCurrentBitsPerPixel(std::uint32_t& bits) {
  bits = 0;
  const DisplayContext display;
  if (!display.open()) return false;
  bits = display.Capability(BITSPIXEL);
  return true;
}

bool FindMaxResolution(std::uint32_t& width, std::uint32_t& height) {
  DisplaySize best;
  const bool any = ForEachDisplayMode([&best](const DEVMODEA& mode) {
    best = LargerSize(best, {mode.dmPelsWidth, mode.dmPelsHeight});
  });
  width = best.width;
  height = best.height;
  return any;
}

bool FindMaxBitsPerPixel(std::uint32_t& bits) {
  std::uint32_t most = 0;
  const bool any = ForEachDisplayMode(
      [&most](const DEVMODEA& mode) { most = std::max<std::uint32_t>(most, mode.dmBitsPerPel); });
  bits = most;
  return any;
}

bool IsSmallFont(bool& small_font) {
  small_font = false;
  HWND const desktop = GetDesktopWindow();
  if (desktop == nullptr) return false;
  HDC const dc = GetWindowDC(desktop);
  if (dc == nullptr) return false;
  TEXTMETRICA metrics = {};
  const bool told = GetTextMetricsA(dc, &metrics) != 0;
  ReleaseDC(desktop, dc);
  if (told) small_font = IsSmallFontHeight(metrics.tmHeight);
  return told;
}

bool WriteResolution(ItemRun& run) {
  return WriteNowAndMost<DisplaySize>(
      run, "Resolution",
      {&ProfileSettings::current_resolution,
       [](DisplaySize& now) { return ReadCurrentResolution(now.width, now.height); }},
      {&ProfileSettings::max_resolution,
       [](DisplaySize& most) { return FindMaxResolution(most.width, most.height); }});
}

bool WriteColors(ItemRun& run) {
  return WriteNowAndMost<std::uint32_t>(
      run, "Colors (bpp)", {&ProfileSettings::current_bits_pixel, ReadCurrentBitsPerPixel},
      {&ProfileSettings::max_bits_pixel, FindMaxBitsPerPixel});
}

bool FormatLargeFont(ProbeContext&, std::span<char> text) {
  bool small_font = false;
  if (!IsSmallFont(small_font)) return false;
  CopyText(text.data(), text.size(), YesOrNo(!small_font));
  return true;
}

}  // namespace hostscope
