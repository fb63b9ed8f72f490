// Turns what can only be asked of the user's activity into what happened: a touch, a camera that is
// taken or left, another application that records. Has to be asked often.
#pragma once

#include "base/clock.h"
#include "platform/activity_detector.h"
#include "replay/trace_event.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

class ActivityWatch {
public:
    /// How often it is meant to be asked: a touch is told at most so much late.
    static constexpr Nanoseconds interval = std::chrono::milliseconds{200};

    /// A source may take this long to answer, and its answer is as much out of date.
    static constexpr Nanoseconds blur = std::chrono::milliseconds{100};

    /// Between two answers about one touch; touches that are closer together count as one.
    static constexpr Nanoseconds jitter = std::chrono::milliseconds{10};

    /// What was touched before this is made is not told.
    ActivityWatch(ActivityDetector& activity, const Clock& clock)
        : activity_(activity),
          clock_(clock),
          askedAt_(clock.now()) {}

    /// What has happened since it was asked last.
    [[nodiscard]] std::vector<trace::Event> changes();

private:
    [[nodiscard]] bool touched();

    ActivityDetector& activity_;
    const Clock& clock_;
    TimePoint askedAt_;
    std::optional<TimePoint> touchedAt_; ///< of the touch told last
    bool camera_ = false;
    std::optional<std::string> microphone_;
};

} // namespace wegslot
