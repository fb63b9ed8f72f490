#include "monitor/presence.h"

#include <cstdlib>

namespace wegslot {

KeyState Presence::evaluate(const KeyDevice& key, TimePoint now) {
    const auto seen = signals_.lastSeen(key.id);
    if (!seen) return KeyState::away;
    if (now - *seen > rounded(settings_.lostTimeout.get())) return KeyState::away;

    const auto rssi = signals_.smoothedRSSI(key.id);
    if (rssi && *rssi >= key.threshold) {
        belowSince_.erase(key.id);
        return KeyState::near;
    }
    const TimePoint since = belowSince_.try_emplace(key.id, now).first->second;
    return now - since >= rounded(settings_.awayDelay.get()) ? KeyState::away : KeyState::leaving;
}

KeyStates Presence::evaluateAll(TimePoint now) {
    KeyStates states;
    for (const KeyDevice& key : settings_.keys.get())
        if (!states.emplace(key.id, evaluate(key, now)).second) std::abort();
    return states;
}

} // namespace wegslot
