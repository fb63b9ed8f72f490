// Which part of a day is looked at: never more than the day, never outside of it, never so little
// that nothing is left to see.
#pragma once

#include "insight/zone.h"

namespace wegslot::insight {

class Viewport {
public:
    /// The judgement is of seconds: closer than this there is nothing new to see.
    static constexpr Nanoseconds least = std::chrono::seconds{10};

    Viewport() = default;
    explicit Viewport(Span whole) : whole_(whole), visible_(whole) {}

    [[nodiscard]] const Span& whole() const { return whole_; }
    [[nodiscard]] const Span& visible() const { return visible_; }
    [[nodiscard]] bool showsAll() const { return visible_ == whole_; }
    [[nodiscard]] bool isClosest() const { return visible_.length() <= least; }

    /// Shows a part that is `factor` as long; what is seen at `about` stays where it is, as far as
    /// the edges of the day let it.
    void zoom(double factor, TimePoint about);

    /// Shows what is `by` later.
    void move(Nanoseconds by);

    void showAll() { visible_ = whole_; }

    /// Moves as little as it takes to see `wall` with some room around it.
    void reveal(TimePoint wall);

private:
    void place(TimePoint from, Nanoseconds length);

    Span whole_;
    Span visible_;
};

} // namespace wegslot::insight
