// Days and times of day as the user's calendar and clock have them. All instants here are those of
// the clock on the wall.
#pragma once

#include "base/time.h"
#include "ui/phase_presentation.h"

#include <chrono>
#include <functional>
#include <string>

namespace wegslot::insight {

using Day = std::chrono::local_days;

struct Span {
    TimePoint from;
    TimePoint to; ///< not in it

    [[nodiscard]] Nanoseconds length() const { return to - from; }
    [[nodiscard]] bool contains(TimePoint wall) const { return from <= wall && wall < to; }
    friend bool operator==(const Span&, const Span&) = default;
};

struct Zone {
    std::function<Day(TimePoint wall)> dayOf;
    std::function<TimePoint(Day)> beginOf;
    ClockTime clockTime;                  ///< "12:31"
    ClockTime exactTime;                  ///< "12:31:05"
    std::function<std::string(Day)> name; ///< "maandag 23 november", for the user

    /// 23 or 25 hours twice a year.
    [[nodiscard]] Span span(Day day) const {
        return {beginOf(day), beginOf(day + std::chrono::days{1})};
    }
};

} // namespace wegslot::insight
