// The port through which the core learns the time. There are two readings, because the wall clock
// may be set while nobody has moved.
#pragma once

#include "base/time.h"

namespace wegslot {

class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    /// The time to judge by. It never steps, counts the time the machine slept, and may be
    /// hours off what a clock on the wall shows.
    [[nodiscard]] virtual TimePoint now() const = 0;

    /// What a correct person's clock shows at this instant. May jump either way between two
    /// calls; for texts and the log only.
    [[nodiscard]] virtual TimePoint wallClock() const = 0;
};

} // namespace wegslot
