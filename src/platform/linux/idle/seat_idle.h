// How long one seat has been untouched, reckoned from events that come only when a timeout has
// passed and when somebody touches it again.
#pragma once

#include "base/time.h"

#include <chrono>
#include <optional>

namespace wegslot {

class SeatIdle {
public:
    /// How long a seat is untouched before we are told: what is answered is less than this short
    /// of the truth. Shorter would wake us at every pause in typing.
    static constexpr std::chrono::milliseconds timeout{1000};

    /// A second time in a row changes nothing.
    void becameIdle(TimePoint now) {
        if (!since_) since_ = now - timeout;
    }
    void becameActive() { since_.reset(); }

    /// 0 until the timeout has passed, the first time as well.
    [[nodiscard]] Nanoseconds idleTime(TimePoint now) const {
        return since_ ? now - *since_ : Nanoseconds{0};
    }

private:
    std::optional<TimePoint> since_;
};

} // namespace wegslot
