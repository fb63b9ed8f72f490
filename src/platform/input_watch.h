// Turns "idle for so long" into "touched then": when keyboard or mouse was touched last, told once.
#pragma once

#include "base/clock.h"
#include "platform/activity_detector.h"

#include <algorithm>
#include <optional>

namespace wegslot {

class InputWatch {
public:
    /// Between two answers about one touch; touches that are closer together count as one.
    static constexpr Nanoseconds jitter = std::chrono::milliseconds{10};

    /// What was touched before this is made is not told. Both must outlive it.
    InputWatch(ActivityDetector& activity, const Clock& clock)
        : activity_(activity),
          clock_(clock),
          toldUntil_(clock.now()) {}

    /// The last touch, unless it has been told.
    [[nodiscard]] std::optional<TimePoint> newTouch() {
        const TimePoint asked = clock_.now();
        const Seconds idle = activity_.idleSeconds();
        const TimePoint answered = clock_.now();
        if (idle == ActivityDetector::unknownIdle)
            return std::nullopt; // a later answer tells of it
        // The answer was right at some instant between, so the last touch was between these.
        const TimePoint earliest = later(asked, -rounded(idle));
        const TimePoint latest = later(answered, -rounded(idle));
        const bool isNew = earliest > later(toldUntil_, jitter);
        toldUntil_ = isNew ? latest : std::min(toldUntil_, latest);
        return isNew ? std::optional(latest) : std::nullopt;
    }

private:
    ActivityDetector& activity_;
    const Clock& clock_;
    TimePoint toldUntil_; ///< every touch up to here is told
};

} // namespace wegslot
