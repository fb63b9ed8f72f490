#include "recording/activity_watch.h"

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
    const TimePoint now = clock_.now();
    const TimePoint before = std::exchange(askedAt_, now);
    const Seconds idle = activity_.idleSeconds();
    if (idle == ActivityDetector::unknownIdle) return false;
    const TimePoint last = later(now, -rounded(idle));
    // One of long ago is no new one, even if this answer puts it later than the one before did.
    if (last < later(before, -blur)) return false;
    if (touchedAt_ && last <= later(*touchedAt_, jitter)) return false;
    touchedAt_ = last;
    return true;
}

} // namespace wegslot
