// Turns what can only be asked of the user's activity into what happened: a touch, a camera that is
// taken or left, another application that records. Has to be asked often.
#pragma once

#include "base/clock.h"
#include "platform/activity_detector.h"
#include "platform/input_watch.h"
#include "trace/event.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

class ActivityWatch {
public:
    /// How often it is meant to be asked: a touch is told at most so much late.
    static constexpr Nanoseconds interval = std::chrono::milliseconds{200};

    /// What was touched before this is made is not told.
    ActivityWatch(ActivityDetector& activity, const Clock& clock)
        : activity_(activity),
          inputs_(activity, clock) {}

    /// What has happened since it was asked last.
    [[nodiscard]] std::vector<trace::Event> changes();

private:
    ActivityDetector& activity_;
    InputWatch inputs_;
    bool camera_ = false;
    std::optional<std::string> microphone_;
};

} // namespace wegslot
