// The platform's way of counting time: steps of 100 nanoseconds since the beginning of 1601.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/host/machine.h"

namespace host {

inline constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
inline constexpr std::int64_t kStepsPerSecond = 10000000;

// The time must be a valid one; the day of the week does not count.
std::uint64_t StepsOf(const LocalTime& time);
// Absent for counts that the platform takes for negative.
std::optional<LocalTime> TimeOf(std::uint64_t steps);

}  // namespace host
