#include "insight/viewport.h"

#include "insight/axis.h"
#include "tests/support/made_history.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint midnight{std::chrono::days{20780}};
constexpr Span wholeDay{midnight, midnight + 24h};

Span part(Nanoseconds from, Nanoseconds to) { return {midnight + from, midnight + to}; }

std::vector<std::string> labels(const std::vector<Tick>& marks) {
    std::vector<std::string> texts;
    for (const Tick& mark : marks)
        texts.push_back(mark.label);
    return texts;
}

} // namespace

TEST(Viewport, ShowsTheWholeDayAtFirst) {
    const Viewport viewport(wholeDay);
    EXPECT_EQ(viewport.visible(), wholeDay);
    EXPECT_TRUE(viewport.showsAll());
}

TEST(Viewport, WhatIsPointedAtStaysWhereItIsWhileZooming) {
    Viewport viewport(wholeDay);
    viewport.zoom(0.5, midnight + 18h);
    EXPECT_EQ(viewport.visible(), part(9h, 21h));
    viewport.zoom(0.5, midnight + 9h);
    EXPECT_EQ(viewport.visible(), part(9h, 15h));
    viewport.zoom(2, midnight + 15h);
    EXPECT_EQ(viewport.visible(), part(3h, 15h));
}

TEST(Viewport, ZoomingOutStopsAtTheDay) {
    Viewport viewport(wholeDay);
    viewport.zoom(0.5, midnight + 24h);
    EXPECT_EQ(viewport.visible(), part(12h, 24h));
    viewport.zoom(1.5, midnight + 12h);
    EXPECT_EQ(viewport.visible(), part(6h, 24h));
    viewport.zoom(1e300, midnight + 20h);
    EXPECT_TRUE(viewport.showsAll());
}

TEST(Viewport, ZoomingInStopsAtTenSeconds) {
    Viewport viewport(wholeDay);
    viewport.zoom(11.0 / 86400, midnight);
    EXPECT_FALSE(viewport.isClosest());
    viewport.zoom(0.01, midnight);
    EXPECT_EQ(viewport.visible(), part(0s, 10s));
    EXPECT_TRUE(viewport.isClosest());
}

TEST(Viewport, NoNumberDoesNothing) {
    Viewport viewport(wholeDay);
    for (const double factor : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        viewport.zoom(factor, midnight);
        EXPECT_TRUE(viewport.showsAll()) << factor;
    }
}

TEST(Viewport, MovingStopsAtTheEdges) {
    Viewport viewport(wholeDay);
    viewport.zoom(0.25, midnight + 12h);
    EXPECT_EQ(viewport.visible(), part(9h, 15h));
    viewport.move(1h);
    EXPECT_EQ(viewport.visible(), part(10h, 16h));
    viewport.move(8h);
    EXPECT_EQ(viewport.visible(), part(18h, 24h));
    viewport.move(Nanoseconds::min());
    EXPECT_EQ(viewport.visible(), part(0h, 6h));
}

TEST(Viewport, MovesAsLittleAsItTakesToSeeSomething) {
    Viewport viewport(wholeDay);
    viewport.zoom(10.0 / 24, midnight);
    EXPECT_EQ(viewport.visible(), part(0h, 10h));
    viewport.reveal(midnight + 9h); // there is an hour of room behind it
    EXPECT_EQ(viewport.visible(), part(0h, 10h));
    viewport.reveal(midnight + 12h);
    EXPECT_EQ(viewport.visible(), part(3h, 13h));
    viewport.reveal(midnight + 3h);
    EXPECT_EQ(viewport.visible(), part(2h, 12h));
    viewport.reveal(midnight + 24h);
    EXPECT_EQ(viewport.visible(), part(14h, 24h));
}

TEST(Axis, TellsRoundTimesAsManyAsHaveRoom) {
    EXPECT_EQ(labels(ticks(wholeDay, midnight, 5, greenwich())),
              (std::vector<std::string>{"00:00", "06:00", "12:00", "18:00"}));
    EXPECT_EQ(labels(ticks(part(9h, 10h), midnight, 4, greenwich())),
              (std::vector<std::string>{"09:00", "09:30"}));
    EXPECT_EQ(labels(ticks(part(9h + 1s, 10h), midnight, 4, greenwich())),
              (std::vector<std::string>{"09:15", "09:30", "09:45"}));
    EXPECT_EQ(labels(ticks(part(9h, 10h), midnight, 5, greenwich())),
              (std::vector<std::string>{"09:00", "09:15", "09:30", "09:45"}));
    EXPECT_EQ(labels(ticks(part(9h + 7s, 9h + 17s), midnight, 3, greenwich())),
              (std::vector<std::string>{"09:00:10", "09:00:15"}));
}

TEST(Axis, HasNothingWhereThereIsNoRoom) {
    EXPECT_TRUE(ticks(wholeDay, midnight, 0, greenwich()).empty());
    EXPECT_TRUE(ticks({midnight, midnight}, midnight, 5, greenwich()).empty());
    EXPECT_EQ(ticks(wholeDay, midnight, 1, greenwich()).size(), 2U); // noon, and where it begins
}
