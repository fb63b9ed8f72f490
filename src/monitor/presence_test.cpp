#include "monitor/presence.h"

#include "tests/support/world.h"

#include <limits>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct PresenceTest : testing::Test {
    World world;
    Settings settings{world.store};
    Scanner scanner{world.central, world.time, world.time};
    Presence presence{settings, scanner};
    KeyDevice key = keyNamed("Telefoon", 1);

    void SetUp() override {
        scanner.setPassiveIDs({numbered(1)});
        scanner.setWatchedIDs({numbered(1)});
    }

    KeyState judge() { return presence.evaluate(key, world.time.now()); }
};

} // namespace

TEST_F(PresenceTest, AKeyNeverHeardIsAwayAtOnce) { EXPECT_EQ(judge(), KeyState::away); }

TEST_F(PresenceTest, AKeyHeardExactlyAtLostTimeoutIsStillHeard) {
    settings.lostTimeout.set(Seconds{4}); // within the smoothing window
    world.hear(1, -50);
    world.pass(3999ms);
    EXPECT_EQ(judge(), KeyState::near);
    world.pass(1ms);
    EXPECT_EQ(judge(), KeyState::near);
    world.pass(1ns);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, ASignalExactlyAtTheThresholdIsNear) {
    world.hear(1, -75);
    EXPECT_EQ(judge(), KeyState::near);
    key.threshold = Dbm{-75.1};
    EXPECT_EQ(judge(), KeyState::near);
    key.threshold = Dbm{-74.9};
    EXPECT_EQ(judge(), KeyState::leaving);
}

TEST_F(PresenceTest, AWeakKeyIsAwayOnceTheAwayDelayHasPassed) {
    key.threshold = Dbm{-74.9};
    world.hear(1, -75);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(5s - 1ns);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(1ns);
    EXPECT_EQ(judge(), KeyState::away);
    world.pass(1s);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, WithoutAwayDelayTheFirstWeakReadingIsAway) {
    for (const double delay : {0.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
        settings.awayDelay.set(Seconds{delay});
        presence.restart();
        world.hear(1, -90);
        EXPECT_EQ(judge(), KeyState::away) << delay;
    }
}

TEST_F(PresenceTest, AStrongReadingRestartsTheClock) {
    world.hear(1, -90);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(4s);
    for (int sample = 0; sample < 3; ++sample)
        world.hear(1, -50);
    EXPECT_EQ(judge(), KeyState::near);
    world.pass(1s);
    for (int sample = 0; sample < 8; ++sample)
        world.hear(1, -90);
    EXPECT_EQ(judge(), KeyState::leaving); // the second weak reading starts it
    world.pass(5s - 1ns);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(1ns);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, AKeyHeardLatelyWithoutASampleInTheWindowIsWeak) {
    world.hear(1, -50);
    world.pass(5s);
    EXPECT_EQ(judge(), KeyState::near);
    world.pass(1ns);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(5s);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, ALostKeyNeitherStartsNorClearsItsClock) {
    world.hear(1, -90);
    EXPECT_EQ(judge(), KeyState::leaving); // the clock starts here
    world.pass(16s);
    EXPECT_EQ(judge(), KeyState::away); // lost
    settings.awayDelay.set(Seconds{17});
    world.hear(1, -90);
    EXPECT_EQ(judge(), KeyState::leaving); // 16 of the 17 seconds have passed
    world.pass(1s);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, ARestartForgetsTheClock) {
    world.hear(1, -90);
    EXPECT_EQ(judge(), KeyState::leaving);
    world.pass(5s);
    presence.restart();
    EXPECT_EQ(judge(), KeyState::leaving);
}

TEST_F(PresenceTest, AnyDoubleIsADelay) {
    world.hear(1, -90);
    settings.awayDelay.set(Seconds{1e300});
    EXPECT_EQ(judge(), KeyState::leaving);
    settings.lostTimeout.set(Seconds{-1});
    EXPECT_EQ(judge(), KeyState::away);
    settings.lostTimeout.set(Seconds{std::numeric_limits<double>::infinity()});
    EXPECT_EQ(judge(), KeyState::leaving);
    settings.lostTimeout.set(Seconds{std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(judge(), KeyState::leaving); // NaN is 0, and it is heard right now
    world.pass(1ns);
    EXPECT_EQ(judge(), KeyState::away);
}

TEST_F(PresenceTest, JudgesEveryKey) {
    settings.keys.set({key, keyNamed("Horloge", 2)});
    world.hear(1, -50);
    EXPECT_EQ(presence.evaluateAll(world.time.now()),
              (KeyStates{{numbered(1), KeyState::near}, {numbered(2), KeyState::away}}));
}

TEST_F(PresenceTest, ARepeatedIdStopsTheProgram) {
    settings.keys.set({key, key});
    EXPECT_DEATH(static_cast<void>(presence.evaluateAll(world.time.now())), "");
}
