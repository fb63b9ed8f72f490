// The time that the air goes by: steady, whatever is done to the guest's clock.
#pragma once

#include <chrono>

namespace controller {

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

/// Not meant for spans beyond some years.
inline Duration fromSeconds(double seconds) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

} // namespace controller
