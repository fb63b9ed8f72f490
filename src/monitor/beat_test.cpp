#include "monitor/beat.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <utility>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{1000h};

/// Ticks are run as late as a test says.
struct LateClock final : Clock {
    explicit LateClock(const VirtualTime& real) : time(real) {}

    [[nodiscard]] TimePoint now() const override { return time.now() + late; }

    [[nodiscard]] TimePoint wallClock() const override { return now(); }

    const VirtualTime& time;
    Nanoseconds late{0};
};

} // namespace

TEST(Beat, ATickOnTimeIsMeantForItsInstant) {
    Beat beat(1s, start);
    for (int second = 1; second < 10; ++second)
        EXPECT_EQ(beat.of(start + second * 1s), start + second * 1s);
}

TEST(Beat, ATickThatIsALittleLateIsMeantForTheBeat) {
    Beat beat(1s, start);
    EXPECT_EQ(beat.of(start + 1s + 3ms), start + 1s);
    EXPECT_EQ(beat.of(start + 2s + 1ns), start + 2s);
    EXPECT_EQ(beat.of(start + 3s + Beat::tolerance), start + 3s);
    EXPECT_EQ(beat.of(start + 7s + 1ms), start + 7s); // some were missed
}

TEST(Beat, ATickThatIsHeldUpWithinItsSecondIsMeantForTheBeatAllTheSame) {
    Beat beat(1s, start);
    EXPECT_EQ(beat.of(start + 1s + Beat::tolerance + 1ns), start + 1s);
    EXPECT_EQ(beat.of(start + 2s), start + 2s);
    EXPECT_EQ(beat.of(start + 4s - 1ns), start + 3s);
    EXPECT_EQ(beat.of(start + 4s), start + 4s);
    EXPECT_EQ(beat.of(start + 6s), start + 6s); // one was missed
}

TEST(Beat, ATickThatHasMissedOthersBeginsAnother) {
    Beat beat(1s, start);
    const TimePoint held = start + 2s + Beat::tolerance + 1ns;
    EXPECT_EQ(beat.of(held), held);
    EXPECT_EQ(beat.of(held + 1s + 2ms), held + 1s);
    EXPECT_EQ(beat.of(start + 1h), start + 1h); // back on the old one
    EXPECT_EQ(beat.of(start + 1h + 1s + 2ms), start + 1h + 1s);
}

TEST(Beat, WhatComesInWhileATickIsHeldUpIsHeardBeforeIt) {
    Beat beat(1s, start);
    static_cast<void>(beat.of(start + 1s));
    EXPECT_EQ(beat.heard(start + 2s - 1ns), start + 2s - 1ns);
    EXPECT_EQ(beat.heard(start + 2s), start + 2s); // the tick is not late yet
    EXPECT_EQ(beat.heard(start + 2s + 1ns), start + 2s - 1ms);
    EXPECT_EQ(beat.heard(start + 3s - 1ns), start + 2s - 1ms);
    EXPECT_EQ(beat.heard(start + 3s), start + 3s); // that tick has been missed
}

TEST(Beat, ACountdownTakesItsSecondsHoweverLateTheTicksAreRun) {
    using Lateness = std::pair<Nanoseconds, Nanoseconds>; // before it begins, and from then on
    for (const auto& [before, later] :
         {Lateness{5ms, 0ms}, Lateness{5ms, 1ms}, Lateness{5ms, 9ms}, Lateness{5ms, 700ms},
          Lateness{700ms, 0ms}, Lateness{700ms, 999ms}}) {
        World world;
        LateClock clock(world.time);
        AppModel::Surroundings around = world.surroundings();
        AppModel model({around.preferences,
                        around.central,
                        {clock, world.time, world.session, world.activity, world.platform.lock},
                        around.makeHud});
        model.settings().keys.set({keyNamed("Telefoon", 1)});
        Monitor& monitor = model.monitor();
        world.central.setState(CentralState::poweredOn);
        world.keepHearing(1, -50, 2);
        clock.late = before;
        while (!is<phase::Warning>(monitor.phase().get()))
            world.pass(1s);
        clock.late = later;
        world.pass(4s);
        EXPECT_EQ(world.locks, 0);
        world.pass(1s);
        EXPECT_EQ(world.locks, 1) << before.count() << " " << later.count();
    }
}
