#include "probes/system/working_time.h"

#include "platform/win32.h"

namespace hostscope {

void FormatWorkingTimeOf(std::uint32_t milliseconds, std::span<char> text) {
  const unsigned total_seconds = milliseconds / 1000;
  const unsigned total_minutes = total_seconds / 60;
  const unsigned total_hours = total_minutes / 60;
  wsprintfA(text.data(), "%u:%u:%u:%u", total_hours / 24, total_hours % 24, total_minutes % 60,
            total_seconds % 60);
}

bool FormatWorkingTime(ProbeContext&, std::span<char> text) {
  FormatWorkingTimeOf(GetTickCount(), text);
  return true;
}

}  // namespace hostscope
