// The time that the air goes by: steady, whatever is done to the guest's clock.
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace controller {

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

/// Not meant for spans beyond some years.
inline Duration fromSeconds(double seconds) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

/// Of two that may never come.
inline std::optional<TimePoint> sooner(std::optional<TimePoint> one,
                                       std::optional<TimePoint> other) {
    return one && other ? std::min(one, other) : (one ? one : other);
}

} // namespace controller
