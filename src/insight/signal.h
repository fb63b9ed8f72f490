// The strength of one key over a day, as it was heard, and what of it is drawn: for each column of
// pixels the weakest, the middle and the strongest of the samples in it, so that drawing a day
// costs what drawing a minute does.
#pragma once

#include "insight/ranks.h"
#include "insight/zone.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace wegslot::insight {

/// In dBm.
struct Strengths {
    int lowest = 0;
    int median = 0; ///< the lower one of two
    int highest = 0;
    friend bool operator==(const Strengths&, const Strengths&) = default;
};

class Signal {
public:
    struct Point {
        TimePoint wall;
        int rssi = 0; ///< dBm; held within -128 and 127, which no radio leaves
    };

    Signal() = default;
    explicit Signal(const std::vector<Point>& points);

    [[nodiscard]] std::size_t size() const { return walls_.size(); }

    /// Nothing where it was not heard.
    [[nodiscard]] std::optional<Strengths> within(const Span& span) const;

    /// For each of `count` columns of equal width.
    [[nodiscard]] std::vector<std::optional<Strengths>> columns(const Span& span, int count) const;

private:
    [[nodiscard]] std::optional<Strengths> between(std::size_t from, std::size_t to) const;
    [[nodiscard]] std::size_t placeOf(TimePoint wall) const;

    std::vector<TimePoint> walls_; ///< rising
    Ranks ranks_;
};

} // namespace wegslot::insight
