#include "platform/host/file_time.h"

#include <chrono>

namespace host {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr std::int64_t kSecondsPerDay = 86400;

}  // namespace

std::uint64_t StepsOf(const LocalTime& time) {
  const sys_days day = std::chrono::year(time.year) / time.month / time.day;
  const int seconds_of_day = (time.hour * 60 + time.minute) * 60 + time.second;
  const std::int64_t seconds = day.time_since_epoch().count() * kSecondsPerDay + seconds_of_day;
  return static_cast<std::uint64_t>((seconds + kSecondsFrom1601To1970) * kStepsPerSecond +
                                    time.milliseconds * (kStepsPerSecond / 1000));
}

std::optional<LocalTime> TimeOf(std::uint64_t steps) {
  if (steps >> 63 != 0) return std::nullopt;
  const auto count = static_cast<std::int64_t>(steps);
  const std::int64_t seconds = count / kStepsPerSecond;
  const std::int64_t rest = seconds % kSecondsPerDay;
  const sys_days day{days((seconds / kSecondsPerDay) - kSecondsFrom1601To1970 / kSecondsPerDay)};
  const std::chrono::year_month_day date{day};
  return LocalTime{static_cast<WORD>(static_cast<int>(date.year())),
                   static_cast<WORD>(static_cast<unsigned>(date.month())),
                   static_cast<WORD>(std::chrono::weekday(day).c_encoding()),
                   static_cast<WORD>(static_cast<unsigned>(date.day())),
                   static_cast<WORD>(rest / 3600),
                   static_cast<WORD>(rest / 60 % 60),
                   static_cast<WORD>(rest % 60),
                   static_cast<WORD>(count % kStepsPerSecond / (kStepsPerSecond / 1000))};
}

}  // namespace host
