#include "insight/signal.h"

#include <algorithm>
#include <limits>

namespace wegslot::insight {

Signal::Signal(const std::vector<Point>& points) {
    std::vector<Point> sorted;
    const std::vector<Point>* inOrder = &points;
    // A clock on the wall may be set back.
    if (!std::ranges::is_sorted(points, {}, &Point::wall)) {
        sorted = points;
        std::ranges::stable_sort(sorted, {}, &Point::wall);
        inOrder = &sorted;
    }
    using Limits = std::numeric_limits<std::int8_t>;
    std::vector<std::int8_t> strengths;
    strengths.reserve(points.size());
    walls_.reserve(points.size());
    for (const Point& point : *inOrder) {
        walls_.push_back(point.wall);
        strengths.push_back(
            static_cast<std::int8_t>(std::clamp<int>(point.rssi, Limits::min(), Limits::max())));
    }
    ranks_ = Ranks(strengths);
}

std::size_t Signal::placeOf(TimePoint wall) const {
    return static_cast<std::size_t>(std::ranges::lower_bound(walls_, wall) - walls_.begin());
}

std::optional<Strengths> Signal::between(std::size_t from, std::size_t to) const {
    if (from >= to) return std::nullopt;
    const std::size_t count = to - from;
    return Strengths{.lowest = ranks_.at(from, to, 0),
                     .median = ranks_.at(from, to, (count - 1) / 2),
                     .highest = ranks_.at(from, to, count - 1)};
}

std::optional<Strengths> Signal::within(const Span& span) const {
    return between(placeOf(span.from), placeOf(span.to));
}

std::vector<std::optional<Strengths>> Signal::columns(const Span& span, int count) const {
    std::vector<std::optional<Strengths>> result;
    if (count <= 0) return result;
    result.reserve(static_cast<std::size_t>(count));
    std::size_t from = placeOf(span.from);
    for (int i = 1; i <= count; ++i) {
        const std::size_t to = placeOf(span.from + span.length() * i / count);
        result.push_back(between(from, to));
        from = to;
    }
    return result;
}

} // namespace wegslot::insight
