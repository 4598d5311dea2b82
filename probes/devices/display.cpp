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
// Here begin the numbers that stand for a mode and are none in the list.
constexpr DWORD kModeNumbers = 0xFFFFFFFE;

// Calls `visit` with each mode in the driver's order; whether there was one.
template <typename Visit>
bool ForEachDisplayMode(Visit visit) {
  BoundLibrary<kModeFunctions.size()> user;
  if (!user.Bind("USER32.DLL", kModeFunctions)) return false;
  const auto enum_display_settings = user.Get<EnumDisplaySettingsFunction>(0);
  for (DWORD index = 0; index < kModeNumbers; ++index) {
    DEVMODEA mode = {};
    mode.dmSize = kModeSize;
    if (enum_display_settings(nullptr, index, &mode) == 0) return index != 0;
    visit(mode);
  }
  return true;
}

// Long enough for every part: two words and two numbers.
constexpr std::size_t kPartSize = 64;

// The parts whose keys are on, the current one first.
void WriteParts(ItemRun& run, Switch current_key, const char* current, Switch max_key,
                const char* maximum) {
  const bool has_current = run.settings.*current_key != 0;
  const bool has_maximum = run.settings.*max_key != 0;
  if (has_current && has_maximum) {
    run.report.WriteFormatted("%s, %s", current, maximum);
  } else {
    run.report.WriteText(has_current ? current : maximum);
  }
}

void BeginLine(ReportWriter& report, const char* label) {
  report.WriteFormatted(kLabelFormat, label);
  report.Flush();
}

void FormatSize(char (&part)[kPartSize], const char* name, std::uint32_t width,
                std::uint32_t height) {
  wsprintfA(part, "%s: %ux%u", name, static_cast<unsigned>(width), static_cast<unsigned>(height));
}

void FormatBits(char (&part)[kPartSize], const char* name, std::uint32_t bits) {
  wsprintfA(part, "%s: %u", name, static_cast<unsigned>(bits));
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
  BeginLine(run.report, "Resolution");
  DisplaySize most, now;
  const bool has_most = FindMaxResolution(most.width, most.height);
  const bool has_now = ReadCurrentResolution(now.width, now.height);
  if (has_most || has_now) {
    char current[kPartSize], maximum[kPartSize];
    FormatSize(current, "current", now.width, now.height);
    FormatSize(maximum, "maximum", most.width, most.height);
    WriteParts(run, &ProfileSettings::current_resolution, current, &ProfileSettings::max_resolution,
               maximum);
  }
  run.report.WriteText(kLineEnd);
  return has_most || has_now;
}

bool WriteColors(ItemRun& run) {
  BeginLine(run.report, "Colors (bpp)");
  std::uint32_t most = 0, now = 0;
  const bool has_most = FindMaxBitsPerPixel(most);
  const bool has_now = ReadCurrentBitsPerPixel(now);
  if (has_most || has_now) {
    char current[kPartSize], maximum[kPartSize];
    FormatBits(current, "current", now);
    FormatBits(maximum, "maximum", most);
    WriteParts(run, &ProfileSettings::current_bits_pixel, current, &ProfileSettings::max_bits_pixel,
               maximum);
  }
  run.report.WriteText(kLineEnd);
  return has_most || has_now;
}

bool FormatLargeFont(ProbeContext&, std::span<char> text) {
  bool small_font = false;
  if (!IsSmallFont(small_font)) return false;
  CopyText(text.data(), text.size(), small_font ? "No" : "Yes");
  return true;
}

}  // namespace hostscope
