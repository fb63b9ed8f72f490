// How long one seat has been untouched, worked out from events that come only when a timeout has
// passed and when somebody touches the seat again.
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

    /// Nobody types for so long without pausing for `timeout` once. Where a film can keep us from
    /// being told, this much without a word is a film, and says nothing of hands.
    static constexpr std::chrono::seconds longestHands{120};

    /// Watched from `start` on, by a protocol that tells whatever plays, or one that a film holds
    /// up.
    SeatIdle(TimePoint start, bool canBeHeldUp) : activeFrom_(start), canBeHeldUp_(canBeHeldUp) {}

    /// A second time in a row changes nothing.
    void becameIdle(TimePoint now) {
        if (!since_) since_ = now - timeout;
    }
    void becameActive(TimePoint now) {
        since_.reset();
        activeFrom_ = now;
    }

    /// 0 until the timeout has passed, the first time as well; nothing when a film may be what
    /// keeps us from being told.
    [[nodiscard]] std::optional<Nanoseconds> idleTime(TimePoint now) const {
        if (since_) return now - *since_;
        if (canBeHeldUp_ && now - activeFrom_ >= longestHands) return std::nullopt;
        return Nanoseconds{0};
    }

private:
    TimePoint activeFrom_;
    bool canBeHeldUp_;
    std::optional<TimePoint> since_;
};

} // namespace wegslot
