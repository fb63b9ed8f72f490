#include "coupling/listening.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

namespace {

Heard withGap(Nanoseconds gap) {
    return {.everHeard = true, .longestGap = gap, .strength = Dbm{-60}};
}

struct ListeningTest : testing::Test {
    World world;
    std::optional<Heard> heard;
    std::optional<Listening> listening;

    void listen(Nanoseconds duration) {
        listening.emplace(world.scanner(), world.time, world.time, numbered(7), duration,
                          [this](const Heard& what) { heard = what; });
    }
};

} // namespace

TEST(AudibilityTest, TenSecondsOfSilenceAreGoodAndAMinuteIsTheLast) {
    EXPECT_EQ(audibilityOf(withGap(10s)), Audibility{audibility::Good{}});
    EXPECT_EQ(audibilityOf(withGap(11s)), Audibility{audibility::Moderate{11s}});
    EXPECT_EQ(audibilityOf(withGap(60s)), Audibility{audibility::Moderate{60s}});
    EXPECT_EQ(audibilityOf(withGap(61s)), Audibility{audibility::Silent{}});
    EXPECT_EQ(audibilityOf({.everHeard = false, .longestGap = 5s, .strength = {}}),
              Audibility{audibility::Silent{}});
}

TEST(AudibilityTest, AGapGetsHalfAsMuchAgainInStepsOfFive) {
    EXPECT_EQ(lostTimeoutFor(Seconds{10}), Seconds{15});
    EXPECT_EQ(lostTimeoutFor(Seconds{11}), Seconds{20});
    EXPECT_EQ(lostTimeoutFor(Seconds{60}), Seconds{90});
}

TEST_F(ListeningTest, AStrangerIsHeardWhileItIsTriedAndNotAfter) {
    world.run();
    listen(20s);
    world.keepHearing(7, -58, 20);
    ASSERT_TRUE(heard);
    EXPECT_EQ(*heard, (Heard{.everHeard = true, .longestGap = 1s, .strength = Dbm{-58}}));
    const auto last = world.scanner().lastSeen(numbered(7));
    listening.reset();
    world.pass(1s);
    world.hear(7, -58);
    EXPECT_EQ(world.scanner().lastSeen(numbered(7)), last);
}

TEST_F(ListeningTest, TheRadioListensAllTheTimeAndTheDeviceIsNeverConnected) {
    world.run();
    listen(20s);
    EXPECT_TRUE(world.central.wanted().list);
    EXPECT_TRUE(world.central.wanted().hear.contains(numbered(7)));
    EXPECT_FALSE(world.central.wanted().connect.contains(numbered(7)));
    listening.reset();
    EXPECT_FALSE(world.central.wanted().list);
    EXPECT_TRUE(world.central.wanted().hear.empty());
}

TEST_F(ListeningTest, TheLongestGapCountsAlsoAtTheBeginningAndAtTheEnd) {
    world.run();
    listen(60s);
    world.pass(12s);
    world.keepHearing(7, -60, 10);
    world.pass(8s);
    world.keepHearing(7, -60, 10);
    world.pass(20s);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->longestGap, 21s);
}

TEST_F(ListeningTest, WhatWasHeardBeforeIsNoSign) {
    world.run({keyNamed("Telefoon", 7)});
    world.hear(7, -50);
    world.pass(1s);
    listen(20s);
    world.pass(20s);
    ASSERT_TRUE(heard);
    EXPECT_EQ(*heard, (Heard{.everHeard = false, .longestGap = 20s, .strength = {}}));
}

TEST_F(ListeningTest, TheStrengthIsTheMedianOfTheWholeTime) {
    world.run();
    listen(60s);
    world.keepHearing(7, -50, 20); // the hand that puts it away
    world.keepHearing(7, -70, 40);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->strength, Dbm{-70});
}
