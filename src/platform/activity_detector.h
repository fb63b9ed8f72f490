// The port to what the user is doing. Asked at most once a second, and only while the keys are
// away. Every failure gives the harmless answer: idle for ever, no camera, no microphone.
#pragma once

#include "base/time.h"

#include <limits>
#include <optional>
#include <string>

namespace wegslot {

class ActivityDetector {
public:
    static constexpr Seconds unknownIdle{std::numeric_limits<double>::infinity()};

    ActivityDetector() = default;
    ActivityDetector(const ActivityDetector&) = delete;
    ActivityDetector& operator=(const ActivityDetector&) = delete;
    virtual ~ActivityDetector() = default;

    /// Since the last key or mouse input; `unknownIdle` when it cannot be told.
    [[nodiscard]] virtual Seconds idleSeconds() = 0;

    [[nodiscard]] virtual bool cameraInUse() = 0;

    /// What an application is called that says nothing about itself.
    static constexpr auto unnamedApplication = "een app";

    /// The display name of the first application that records; nothing when none does.
    [[nodiscard]] virtual std::optional<std::string> microphoneUser() = 0;
};

} // namespace wegslot
