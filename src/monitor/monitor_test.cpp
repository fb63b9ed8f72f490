#include "monitor/monitor.h"

#include "tests/support/world.h"

#include <limits>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct MonitorTest : testing::Test {
    World world;

    static std::vector<KeyDevice> oneKey() { return {keyNamed("iPhone", 1)}; }

    /// Runs with one key that is near: `present`.
    void arrive() {
        world.run(oneKey());
        world.keepHearing(1, -50, 2);
        ASSERT_EQ(world.phaseName(), "present");
    }

    /// The key falls silent; the tick just passed started the countdown.
    void leaveUntilWarning() {
        arrive();
        while (world.phaseName() != "warning")
            world.pass(1s);
    }

    void leaveUntilLocked() {
        leaveUntilWarning();
        while (world.phaseName() != "locked")
            world.pass(1s);
    }
};

} // namespace

TEST_F(MonitorTest, StartsWaitingAndNeverWarnsWhileTheKeysHaveNotBeenNear) {
    world.run(oneKey());
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(1h);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    EXPECT_EQ(world.locks, 0);
    EXPECT_FALSE(world.warning);
    EXPECT_TRUE(world.logged("Wegslot gestart met 1 sleutel(s)"));
    EXPECT_EQ(world.timesLogged("Sleutel in de buurt, bewaking actief"), 0);
}

TEST_F(MonitorTest, ArmsWhenTheKeysAreNear) {
    arrive();
    EXPECT_EQ(world.timesLogged("Sleutel in de buurt, bewaking actief"), 1);
    EXPECT_EQ(world.monitor().keyStates().get(), (KeyStates{{numbered(1), KeyState::near}}));
}

TEST_F(MonitorTest, HandsTheKeysToTheScanner) {
    auto tag = keyNamed("Tag", 2);
    tag.isApple = false;
    auto unknown = keyNamed("Oud", 3);
    unknown.isApple.reset();
    world.run({keyNamed("iPhone", 1), tag, unknown});
    EXPECT_EQ(world.scanner().watchedIDs(), (std::set{numbered(1), numbered(2), numbered(3)}));
    EXPECT_EQ(world.scanner().passiveIDs(), std::set{numbered(2)});
    world.settings().removeKey(numbered(2));
    EXPECT_TRUE(world.scanner().passiveIDs().empty());
    EXPECT_FALSE(world.scanner().includeOtherDevices());
    world.settings().showOtherDevices.set(true);
    EXPECT_TRUE(world.scanner().includeOtherDevices());
}

TEST_F(MonitorTest, ADepartureWarnsAndThenLocks) {
    arrive();
    // Heard last a second ago: its sample leaves the window 5 s after it, so it turns weak at
    // 6 s, away at 11 s, and the countdown ends at 16 s.
    world.pass(4s);
    EXPECT_EQ(world.phaseName(), "present");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "leaving");
    world.pass(4s);
    EXPECT_EQ(world.phaseName(), "leaving");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "warning");
    ASSERT_TRUE(world.warning);
    EXPECT_EQ(world.warning->message, "iPhone is buiten bereik");
    EXPECT_EQ(world.warning->total, Seconds{5});
    EXPECT_EQ(world.warning->deadline, world.time.now() + 5s);
    EXPECT_TRUE(world.logged("Waarschuwing: iPhone is buiten bereik"));
    world.pass(4s);
    EXPECT_EQ(world.phaseName(), "warning");
    EXPECT_EQ(world.locks, 0);
    world.pass(1s); // the deadline itself
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_EQ(world.locks, 1);
    EXPECT_FALSE(world.warning);
    EXPECT_TRUE(world.logged("Mac wordt gelockt"));
    EXPECT_EQ(world.timesLogged("Status: locked"), 1);
}

TEST_F(MonitorTest, WithoutWarningItLocksOnTheFirstTickAtWhichTheKeysAreGone) {
    arrive();
    world.settings().warningEnabled.set(false);
    world.pass(9s);
    EXPECT_EQ(world.phaseName(), "leaving");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_EQ(world.locks, 1);
}

TEST_F(MonitorTest, AConfirmedLockHoldsUntilTheUnlock) {
    leaveUntilLocked();
    world.pass(4900ms);
    world.session.tell(SessionEvent::locked);
    world.pass(1h);
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_FALSE(world.logged("Geen bevestiging van lock ontvangen"));
    world.session.tell(SessionEvent::unlocked);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(1h);
    EXPECT_EQ(world.phaseName(), "waitingForReturn"); // the key has not come back
    EXPECT_EQ(world.locks, 1);
}

TEST_F(MonitorTest, AnUnconfirmedLockIsGivenUpAfterFiveSeconds) {
    leaveUntilLocked();
    world.pass(4s);
    EXPECT_EQ(world.phaseName(), "locked");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    EXPECT_EQ(world.timesLogged("Geen bevestiging van lock ontvangen"), 1);
    world.pass(1h);
    EXPECT_EQ(world.locks, 1);
}

TEST_F(MonitorTest, AWarningDeadlineBetweenTwoTicksLocksOnTheNextTick) {
    arrive();
    world.settings().warningSeconds.set(Seconds{2.5});
    while (world.phaseName() != "warning")
        world.pass(1s);
    world.pass(2s);
    EXPECT_EQ(world.locks, 0);
    world.pass(1s);
    EXPECT_EQ(world.locks, 1);
}

TEST_F(MonitorTest, AKeyThatReturnsDuringTheCountdownHidesItWithoutALine) {
    leaveUntilWarning();
    static_cast<void>(world.log.take());
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
    EXPECT_FALSE(world.warning);
    EXPECT_TRUE(world.log.messages.empty());
}

TEST_F(MonitorTest, AWeakReturnDuringTheCountdownIsLeavingOnceTheClockRestarted) {
    leaveUntilWarning();
    world.settings().awayDelay.set(Seconds{60});
    world.keepHearing(1, -90, 1);
    EXPECT_EQ(world.phaseName(), "leaving");
    EXPECT_FALSE(world.warning);
}

TEST_F(MonitorTest, SwitchingOffDisablesOnTheNextTickAndHidesThePanel) {
    leaveUntilWarning();
    world.settings().enabled.set(false);
    EXPECT_EQ(world.phaseName(), "warning");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "disabled");
    EXPECT_FALSE(world.warning);
}

TEST_F(MonitorTest, SwitchingOnWaitsAtOnceUntilTheKeysHaveBeenNear) {
    arrive();
    world.settings().enabled.set(false);
    world.pass(60s);
    world.settings().enabled.set(true);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(60s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    EXPECT_EQ(world.locks, 0);
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, TheSamePhaseTwiceWritesOneLine) {
    arrive();
    world.settings().enabled.set(false);
    world.pass(10s);
    EXPECT_EQ(world.timesLogged("Status: disabled"), 1);
}

TEST_F(MonitorTest, WithoutKeysItSaysSoAndComesBackThroughWaiting) {
    world.run();
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "noKeys");
    world.settings().keys.set(oneKey());
    world.hear(1, -50);
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, ARadioThatIsOffIsShownWithItsReason) {
    leaveUntilWarning();
    world.central.setState(CentralState::poweredOff);
    world.pass(1s);
    EXPECT_EQ(world.phase(), Phase{phase::BluetoothUnavailable{"Bluetooth staat uit"}});
    EXPECT_TRUE(world.logged("Status: bluetoothUnavailable(\"Bluetooth staat uit\")"));
    EXPECT_FALSE(world.warning);
    world.central.setState(CentralState::resetting);
    world.pass(1s);
    EXPECT_EQ(world.phase(), Phase{phase::BluetoothUnavailable{"Bluetooth wordt gestart"}});
    world.central.setState(CentralState::poweredOn);
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
}

TEST_F(MonitorTest, ALockFromElsewhereIsTakenOverAtOnce) {
    leaveUntilWarning();
    world.session.tell(SessionEvent::locked);
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_FALSE(world.warning);
    EXPECT_EQ(world.locks, 0);
    world.pass(10s);
    EXPECT_EQ(world.phaseName(), "locked");
}

TEST_F(MonitorTest, KeysAreJudgedWhateverThePhase) {
    arrive();
    world.session.tell(SessionEvent::locked);
    world.pass(60s);
    EXPECT_EQ(world.monitor().keyStates().get(), (KeyStates{{numbered(1), KeyState::away}}));
}

TEST_F(MonitorTest, LockNowLocksWhateverThePhase) {
    world.run(oneKey());
    world.monitor().lockNow();
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_EQ(world.locks, 1);
}

TEST_F(MonitorTest, CancelOutsideACountdownChangesAndWritesNothing) {
    arrive();
    static_cast<void>(world.log.take());
    world.monitor().cancelWarning();
    EXPECT_EQ(world.phaseName(), "present");
    EXPECT_TRUE(world.log.messages.empty());
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, ACancelledCountdownPausesForTenMinutes) {
    leaveUntilWarning();
    const TimePoint cancelled = world.time.now();
    world.warning->onCancel();
    EXPECT_EQ(world.phase(), Phase{phase::Snoozed{cancelled + 600s}});
    EXPECT_FALSE(world.warning);
    EXPECT_TRUE(world.logged("Waarschuwing geannuleerd, 10 minuten pauze"));
    EXPECT_FALSE(world.monitor().snoozeIsManual().get());
    world.pass(599s);
    EXPECT_EQ(world.phaseName(), "snoozed");
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "warning"); // still away: a new countdown
}

TEST_F(MonitorTest, AnAutomaticPauseEndsWhenAKeyComesBack) {
    leaveUntilWarning();
    world.monitor().cancelWarning();
    world.pass(30s);
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
    while (world.phaseName() != "warning")
        world.pass(1s); // and does not come back
}

TEST_F(MonitorTest, ACancelActionThatOutlivesTheMonitorDoesNothing) {
    leaveUntilWarning();
    const auto cancel = world.warning->onCancel;
    world.model.reset();
    static_cast<void>(world.log.take());
    cancel();
    EXPECT_TRUE(world.log.messages.empty());
}

TEST_F(MonitorTest, TouchingTheComputerCancelsTheCountdown) {
    leaveUntilWarning();
    world.pass(2s);
    world.activity.touch();
    world.pass(1s);
    EXPECT_EQ(world.phase(), Phase{phase::Snoozed{world.time.now() + 600s}});
    EXPECT_TRUE(world.logged("Waarschuwing geannuleerd, 10 minuten pauze"));
}

TEST_F(MonitorTest, HandsOnTheKeyboardKeepTheScreenOpen) {
    arrive();
    for (int second = 0; second < 60; ++second) {
        world.activity.touch();
        world.pass(1s);
        EXPECT_NE(world.phaseName(), "warning");
    }
    EXPECT_EQ(world.phase(), Phase{phase::Paused{"Je gebruikt je Mac"}});
    EXPECT_TRUE(world.logged("Status: paused(\"Je gebruikt je Mac\")"));
}

TEST_F(MonitorTest, ACallDuringTheCountdownPausesAndItsEndWarnsAnew) {
    leaveUntilWarning();
    world.pass(3s);
    world.activity.setCamera(true);
    world.pass(1s);
    EXPECT_EQ(world.phase(), Phase{phase::Paused{"Camera is in gebruik"}});
    EXPECT_FALSE(world.warning);
    world.pass(60s);
    world.activity.setCamera(false);
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "warning");
    EXPECT_EQ(world.warning->deadline, world.time.now() + 5s);
}

TEST_F(MonitorTest, AManualPauseHoldsWithAllKeysNear) {
    arrive();
    world.monitor().pause(Seconds{3600});
    EXPECT_EQ(world.phase(), Phase{phase::Snoozed{world.time.now() + 3600s}});
    EXPECT_TRUE(world.monitor().snoozeIsManual().get());
    EXPECT_TRUE(world.logged("Handmatig gepauzeerd tot 2026-11-15 13:00:02 +0000"));
    world.keepHearing(1, -50, 3599);
    EXPECT_EQ(world.phaseName(), "snoozed");
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
    EXPECT_FALSE(world.monitor().snoozeIsManual().get());
}

TEST_F(MonitorTest, AManualPauseWhileWaitingShowsOnceAKeyIsNear) {
    world.run(oneKey());
    world.monitor().pause(Seconds{60});
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.pass(10s);
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "snoozed");
    world.keepHearing(1, -50, 50);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, AnUnlockKeepsAManualPauseAndEndsAnAutomaticOne) {
    leaveUntilWarning();
    world.monitor().cancelWarning();
    world.session.tell(SessionEvent::locked);
    world.session.tell(SessionEvent::unlocked);
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");

    world.monitor().pause(Seconds{60});
    world.session.tell(SessionEvent::locked);
    world.session.tell(SessionEvent::unlocked);
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "snoozed");
}

TEST_F(MonitorTest, ResumeEndsAnyPauseAtOnce) {
    arrive();
    world.monitor().pause(Seconds{3600});
    world.monitor().resume();
    EXPECT_EQ(world.phaseName(), "present");
    EXPECT_FALSE(world.monitor().snoozeIsManual().get());
    EXPECT_TRUE(world.logged("Hervat"));
}

TEST_F(MonitorTest, APauseDuringAnAutomaticOneTakesItOver) {
    leaveUntilWarning();
    world.monitor().cancelWarning();
    world.monitor().pause(Seconds{60});
    EXPECT_TRUE(world.monitor().snoozeIsManual().get());
    EXPECT_EQ(world.phase(), Phase{phase::Snoozed{world.time.now() + 60s}});
}

TEST_F(MonitorTest, APauseOfAnyDoubleIsAnswered) {
    arrive();
    world.monitor().pause(Seconds{-5});
    EXPECT_EQ(world.phaseName(), "present");
    world.monitor().pause(Seconds{std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(world.phaseName(), "present");
    world.monitor().pause(Seconds{1e300});
    EXPECT_EQ(world.phaseName(), "snoozed");
}

TEST_F(MonitorTest, ASteppedWallClockMovesNoPhaseAndOnlyTheTexts) {
    leaveUntilWarning();
    world.pass(2s);
    world.time.stepWallClock(1h);
    world.pass(2s);
    EXPECT_EQ(world.phaseName(), "warning");
    world.time.stepWallClock(-2h);
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "locked");
    world.session.tell(SessionEvent::locked);
    world.session.tell(SessionEvent::unlocked);
    world.keepHearing(1, -50, 1);
    world.monitor().pause(Seconds{60});
    // Eighteen seconds past noon on the steady clock, an hour less on the wall.
    EXPECT_EQ(world.phase(), Phase{phase::Snoozed{World::start + 18s + 60s}});
    EXPECT_TRUE(world.logged("Handmatig gepauzeerd tot 2026-11-15 11:01:18 +0000"));
    EXPECT_TRUE(world.logged("Status: snoozed(2026-11-15 11:01:18 +0000)"));
    world.keepHearing(1, -50, 59);
    EXPECT_EQ(world.phaseName(), "snoozed");
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, AKeyNotHeardSinceTheMachineSleptIsAway) {
    arrive();
    world.time.sleep(1h);
    world.pass(1s);
    EXPECT_EQ(world.phaseName(), "warning");
}

TEST_F(MonitorTest, WithTheRuleAnyOneAwayKeyIsEnough) {
    world.run({keyNamed("iPhone", 1), keyNamed("Watch", 2)});
    world.settings().rule.set(LockRule::anyAway);
    for (int second = 0; second < 2; ++second) {
        world.hear(1, -50);
        world.hear(2, -50);
        world.pass(1s);
    }
    ASSERT_EQ(world.phaseName(), "present");
    world.keepHearing(1, -50, 5);
    EXPECT_EQ(world.phaseName(), "leaving");
    world.keepHearing(1, -50, 5);
    EXPECT_EQ(world.phaseName(), "warning");
    EXPECT_EQ(world.warning->message, "Watch is buiten bereik");
    world.settings().rule.set(LockRule::allAway);
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(MonitorTest, LeavesNoTimerOrListenerBehind) {
    arrive();
    world.model.reset();
    EXPECT_EQ(world.time.pending(), 0U);
    world.session.tell(SessionEvent::locked);
    world.central.setState(CentralState::poweredOff);
    world.hear(1, -50);
    world.pass(10s);
}
