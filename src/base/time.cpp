#include "base/time.h"

#include <cmath>

namespace wegslot {

Nanoseconds rounded(Seconds duration) {
    if (std::isnan(duration.count())) return Nanoseconds{0};
    const Seconds limit = longestDuration;
    if (duration >= limit) return longestDuration;
    if (duration <= -limit) return -longestDuration;
    return Nanoseconds{std::llround(duration.count() * 1e9)};
}

Seconds toMilliseconds(Seconds duration) {
    // From 2^52 on every double is whole, and a thousandth of that is beyond any use.
    constexpr double fractionless = 4503599627370.496;
    if (!(std::abs(duration.count()) < fractionless)) return duration;
    return Seconds{std::round(duration.count() * 1e3) / 1e3};
}

TimePoint later(TimePoint start, Nanoseconds duration) {
    Nanoseconds::rep sum = 0;
    if (!__builtin_add_overflow(start.time_since_epoch().count(), duration.count(), &sum))
        return TimePoint{Nanoseconds{sum}};
    return duration > Nanoseconds{0} ? TimePoint::max() : TimePoint::min();
}

} // namespace wegslot
