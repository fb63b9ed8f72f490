// What the warning panel shows of a countdown at one instant: how much of the ring is left, and the
// number in it. Knows neither a clock nor how it is drawn.
#pragma once

#include "base/time.h"

#include <cstdint>

namespace wegslot {

struct Countdown {
    double fraction = 0;     ///< what is left of the ring, 0 to 1
    std::int64_t number = 0; ///< whole seconds left, rounded up: 0 only from the deadline on

    /// `total` may be anything: where it is not above 0 there is no ring.
    [[nodiscard]] static Countdown at(TimePoint now, TimePoint deadline, Seconds total);

    friend bool operator==(const Countdown&, const Countdown&) = default;
};

} // namespace wegslot
