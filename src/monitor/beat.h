// The beat of a clock that ticks each second: the instant for which a tick was meant, a few
// milliseconds before it is run. Judged by those instants, five seconds are five ticks on every
// machine; judged by when each tick was run they would be five or, as the chance falls, six.
#pragma once

#include "base/time.h"

namespace wegslot {

class Beat {
public:
    /// A tick that is later than this was held up, or has slept: another beat begins with it.
    static constexpr Nanoseconds tolerance = std::chrono::milliseconds{100};

    /// `start`: when the timer was armed.
    Beat(Nanoseconds interval, TimePoint start) : interval_(interval), beat_(start) {}

    /// What the tick that is run at `now` was meant for.
    [[nodiscard]] TimePoint of(TimePoint now) {
        const Nanoseconds late = (now - beat_) % interval_;
        beat_ = late > tolerance ? now : now - late;
        return beat_;
    }

private:
    Nanoseconds interval_;
    TimePoint beat_; ///< the last one
};

} // namespace wegslot
