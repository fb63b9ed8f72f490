#include "recording/activity_watch.h"

#include <utility>

namespace wegslot {

std::vector<trace::Event> ActivityWatch::changes() {
    std::vector<trace::Event> changes;
    if (inputs_.newTouch()) changes.emplace_back(trace::Input{});
    const bool camera = activity_.cameraInUse();
    if (std::exchange(camera_, camera) != camera) changes.emplace_back(trace::Camera{camera});
    auto microphone = activity_.microphoneUser();
    if (microphone != microphone_) {
        microphone_ = std::move(microphone);
        changes.emplace_back(trace::Microphone{microphone_});
    }
    return changes;
}

} // namespace wegslot
