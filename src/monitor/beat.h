// The beat of a clock that ticks once a second: the instant each tick was meant for, however late
// within its second a busy machine runs it. Judged by those instants, five seconds are five ticks
// on every machine; judged by when each tick ran, they would be five or six by chance.
#pragma once

#include "base/time.h"

namespace wegslot {

class Beat {
public:
    /// A timer is so much late without having missed anything.
    static constexpr Nanoseconds tolerance = std::chrono::milliseconds{100};

    /// `start`: when the timer was armed.
    Beat(Nanoseconds interval, TimePoint start) : interval_(interval), beat_(start) {}

    /// What the tick that is run at `now` was meant for. One that is a whole interval late or more
    /// has missed others, or slept: another beat begins with it.
    [[nodiscard]] TimePoint of(TimePoint now) {
        const Nanoseconds late = (now - beat_) % interval_;
        if (isHeldUp(now))
            beat_ = later(beat_, interval_);
        else
            beat_ = late > tolerance ? now : later(now, -late);
        return beat_;
    }

    /// The instant to give to what comes in at `now`, so that the next tick hears it: before that,
    /// also when it is held up.
    [[nodiscard]] TimePoint heard(TimePoint now) const {
        return isHeldUp(now) ? later(beat_, interval_ - std::chrono::milliseconds{1}) : now;
    }

private:
    [[nodiscard]] bool isHeldUp(TimePoint now) const {
        return now - beat_ > interval_ && now - beat_ < 2 * interval_;
    }

    Nanoseconds interval_;
    TimePoint beat_; ///< the last one
};

} // namespace wegslot
