// One recording while it runs: gives each event its time, disguises it if that was asked, and
// hands it over as a line. Knows what the lines so far have told of the radio, so that a device's
// name and what the stack knows are told once.
#pragma once

#include "base/clock.h"
#include "base/result.h"
#include "recording/activity_watch.h"
#include "stage/staged_central.h"
#include "trace/disguise.h"
#include "trace/event.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

class Recording {
public:
    /// Takes one line, with its line feed; why it could not, if it could not.
    using Sink = std::function<std::optional<Failure>(std::string_view line)>;

    /// `start` is time zero. Without `disguise` everything is told as it is.
    Recording(Sink sink, std::optional<Disguise> disguise, ActivityDetector& activity,
              const Clock& clock, TimePoint start);

    /// What happened `at`; not before the event told last. A failure is the recording's end:
    /// nothing may be told to it any more.
    [[nodiscard]] std::optional<Failure> tell(trace::Event event, TimePoint at);

    [[nodiscard]] bool isKnown(const Uuid& id) { return !told_.retrieve({id}).empty(); }

    /// `name` as an event has to tell it so that a replay knows the device by it: nothing when it
    /// does already.
    [[nodiscard]] std::optional<std::string>
    newName(const Uuid& id, const std::optional<std::string_view>& name) const;

    ActivityWatch activity;

private:
    void remember(const trace::Event& event);

    Sink sink_;
    std::optional<Disguise> disguise_;
    TimePoint start_;
    Nanoseconds last_{0};
    StagedCentral told_;
};

} // namespace wegslot
