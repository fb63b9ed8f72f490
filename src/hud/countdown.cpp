#include "hud/countdown.h"

#include <algorithm>

namespace wegslot {
namespace {

/// Never below 0; what does not fit, for instants centuries apart, is as much as does.
Nanoseconds remaining(TimePoint now, TimePoint deadline) {
    if (deadline <= now) return Nanoseconds{0};
    Nanoseconds::rep left = 0;
    const bool tooMuch = __builtin_sub_overflow(deadline.time_since_epoch().count(),
                                                now.time_since_epoch().count(), &left);
    return tooMuch ? Nanoseconds::max() : Nanoseconds{left};
}

} // namespace

Countdown Countdown::at(TimePoint now, TimePoint deadline, Seconds total) {
    const Nanoseconds left = remaining(now, deadline);
    const bool hasRing = total > Seconds{0}; // false for NaN too
    return {.fraction = hasRing ? std::min(Seconds{left} / total, 1.0) : 0,
            .number = std::chrono::floor<std::chrono::seconds>(left).count() +
                      (left % std::chrono::seconds{1} > Nanoseconds{0} ? 1 : 0)};
}

} // namespace wegslot
