// Passes on what is asked of the user's activity, and notes what was answered of camera and
// microphone: so the history knows what the judgement knew, without asking anybody once more.
#pragma once

#include "base/observable.h"
#include "platform/activity_detector.h"

#include <optional>
#include <string>

namespace wegslot::history {

class NotedActivity final : public ActivityDetector {
public:
    /// `activity` must outlive it.
    explicit NotedActivity(ActivityDetector& activity) : activity_(activity) {}

    [[nodiscard]] Seconds idleSeconds() override { return activity_.idleSeconds(); }

    [[nodiscard]] bool cameraInUse() override {
        const bool answer = activity_.cameraInUse();
        if (answer != camera_.get()) camera_.set(answer);
        return answer;
    }

    [[nodiscard]] std::optional<std::string> microphoneUser() override {
        auto answer = activity_.microphoneUser();
        if (answer.has_value() != microphone_.get()) microphone_.set(answer.has_value());
        return answer;
    }

    /// The last answer, when it differs from the one before. False until something is asked.
    [[nodiscard]] const Observable<bool>& camera() const { return camera_; }
    [[nodiscard]] const Observable<bool>& microphone() const { return microphone_; }

private:
    ActivityDetector& activity_;
    Observable<bool> camera_{false};
    Observable<bool> microphone_{false};
};

} // namespace wegslot::history
