// The whole core with every way to lock, in virtual time: what the monitor makes of ways that
// refuse, that do nothing, and of lockers whose process is the only proof.

#include "platform/lock_facts.h"
#include "platform/locker_lock.h"
#include "tests/support/fake_processes.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// logind without anybody who listens to it: takes the request, and nothing comes of it.
struct DeafLock final : ScreenLock {
    void request(std::function<void()>) override { ++requests; }
    int requests = 0;
};

struct LockingScenario : testing::Test, private LockConfirmation {
    World world;
    FakeProcesses processes;
    LockFacts facts{[this](bool locked) {
        world.session.tell(locked ? SessionEvent::locked : SessionEvent::unlocked);
    }};
    LockerWatch lockers{processes, world.time, lockerPatterns({})};
    Subscription seen = lockers.locked().onChange([this](bool locked) { facts.setLocker(locked); });
    DeafLock logind;
    LockerLock locker{processes, lockers, {}, DisplayKind::wayland};
    LockSequence sequence{{&logind, &locker}, world.time, *this};

    void SetUp() override {
        world.onLock = [this] { sequence.lock(); };
        world.run({keyNamed("Telefoon", 1)});
        world.settings().warningEnabled.set(false);
        world.keepHearing(1, -50, 2);
        ASSERT_EQ(world.phaseName(), "present");
    }

    /// The key falls silent; the tick just passed asked for the lock.
    void leave() {
        while (world.locks == 0)
            world.pass(1s);
    }

    [[nodiscard]] Subscription expect(std::function<void()> confirmed) override {
        lockers.expect();
        return world.session.observe([confirmed = std::move(confirmed)](SessionEvent event) {
            if (event == SessionEvent::locked) confirmed();
        });
    }
    [[nodiscard]] bool isLocked() const override { return facts.witness().has_value(); }
};

constexpr auto unconfirmed = "Geen bevestiging van lock ontvangen";

} // namespace

TEST_F(LockingScenario, ALockerThatTakesOverFromADeafLogindIsInTime) {
    processes.installed = {"swaylock"};
    leave();
    world.pass(LockSequence::patience + LockerWatch::settling);
    EXPECT_EQ(logind.requests, 1);
    EXPECT_TRUE(isLocked());
    world.pass(1min);
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_FALSE(world.logged(unconfirmed));
    EXPECT_EQ(world.locks, 1);
    EXPECT_EQ(processes.started.size(), 1U);
    // The user comes back, the key in the pocket, and unlocks: the locker ends.
    world.keepHearing(1, -50, 3);
    processes.end(processes.latest());
    world.keepHearing(1, -50, 3);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(LockingScenario, ALockerThatSomebodyStartsAtTheLastMomentCounts) {
    leave();
    world.pass(4200ms); // found by the look at 4.2 s, settled at 4.7 s
    processes.appear("swaylock");
    world.pass(1min);
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_FALSE(world.logged(unconfirmed));
}

TEST_F(LockingScenario, WithoutAnyWayItIsSaidOnceAndTheKeyIsWaitedFor) {
    leave();
    world.pass(4999ms);
    EXPECT_FALSE(world.logged(unconfirmed));
    world.pass(1s);
    EXPECT_EQ(world.timesLogged(unconfirmed), 1);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(1h);
    EXPECT_EQ(world.locks, 1);
    EXPECT_EQ(logind.requests, 1);
}

TEST_F(LockingScenario, ALockerThatCannotLockDoesNotFakeAConfirmation) {
    processes.installed = {"swaylock"};
    leave();
    world.pass(LockSequence::patience);
    processes.end(processes.latest()); // at once: another program has the screen
    world.pass(10s);
    EXPECT_EQ(world.timesLogged(unconfirmed), 1);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
}

TEST_F(LockingScenario, AScreenThatTheUserLockedBeforeLeavingIsNotLockedAgain) {
    world.keepHearing(1, -50, 2);
    lockers.expect(); // logind told of a request of the user's
    const ProcessId own = processes.appear("swaylock");
    world.keepHearing(1, -50, 2);
    EXPECT_EQ(world.phaseName(), "locked");
    world.pass(1h);
    EXPECT_EQ(world.locks, 0);
    processes.end(own);
    world.pass(2s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
}
