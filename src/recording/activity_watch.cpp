#include "recording/activity_watch.h"

#include <algorithm>
#include <utility>

namespace wegslot {

std::vector<trace::Event> ActivityWatch::changes() {
    std::vector<trace::Event> changes;
    if (touched()) changes.emplace_back(trace::Input{});
    const bool camera = activity_.cameraInUse();
    if (std::exchange(camera_, camera) != camera) changes.emplace_back(trace::Camera{camera});
    auto microphone = activity_.microphoneUser();
    if (microphone != microphone_) {
        microphone_ = std::move(microphone);
        changes.emplace_back(trace::Microphone{microphone_});
    }
    return changes;
}

bool ActivityWatch::touched() {
    const TimePoint asked = clock_.now();
    const Seconds idle = activity_.idleSeconds();
    const TimePoint answered = clock_.now();
    if (idle == ActivityDetector::unknownIdle) return false; // a later answer tells of it
    // The answer was right at some instant between, so the last touch was between these.
    const TimePoint earliest = later(asked, -rounded(idle));
    const TimePoint latest = later(answered, -rounded(idle));
    const bool isNew = earliest > later(toldUntil_, jitter);
    toldUntil_ = isNew ? latest : std::min(toldUntil_, latest);
    return isNew;
}

} // namespace wegslot
