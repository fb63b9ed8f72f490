// Instants and durations of the core. Instants are integers, because every bound of the
// judgement is inclusive or exclusive on purpose and a double cannot hold such a bound.
// Durations that come from a person or a file are doubles and may be anything, NaN included.
#pragma once

#include <chrono>

namespace wegslot {

using Nanoseconds = std::chrono::nanoseconds;
using TimePoint = std::chrono::sys_time<Nanoseconds>;

/// A duration as settings and actions give it: any double, in seconds.
using Seconds = std::chrono::duration<double>;

/// The longest duration that `rounded` gives: a hundred years. Added to any instant of this
/// century it still fits a TimePoint, which ends in 2262.
inline constexpr Nanoseconds longestDuration = std::chrono::hours{24} * 36525;

/// `duration` to the nearest nanosecond, held within plus and minus `longestDuration`; NaN is 0.
/// (A plain duration_cast truncates, which is 1 ns short for one value in fifty.)
[[nodiscard]] Nanoseconds rounded(Seconds duration);

/// `duration` to the nearest whole millisecond, halves away from zero. Values too large to
/// have a fraction, infinities and NaN stay as they are.
[[nodiscard]] Seconds toMilliseconds(Seconds duration);

/// The instant `duration` after `start`, held within what a TimePoint can express.
[[nodiscard]] TimePoint later(TimePoint start, Nanoseconds duration);

} // namespace wegslot
