// The lock and its facts on a real bus, against a logind and screen savers that a test plays.

#include "platform/linux/logind_lock.h"
#include "platform/linux/screen_lock_watcher.h"
#include "platform/linux/screen_savers.h"
#include "platform/lock_sequence.h"
#include "platform/locker_lock.h"
#include "tests/support/captured_log.h"
#include "tests/support/fake_processes.h"
#include "tests/support/look_alike.h"
#include "tests/support/look_alike_logind.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto sessionPath = LookAlikeLogind::session;
constexpr auto sessionInterface = "org.freedesktop.login1.Session";

/// A screen saver that can be active, and locks when asked.
class LookAlikeSaver {
public:
    LookAlikeSaver(BusLoop& loop, const ScreenSaverService& kind)
        : service(loop, kind.name),
          kind_(kind) {
        service.on(std::string(kind.interface) + ".GetActive",
                   [this](LookAlike& saver, sd_bus_message* call) {
                       saver.reply(call, [this](sd_bus_message* answer) {
                           sd_bus_message_append(answer, "b", active ? 1 : 0);
                       });
                   });
        service.on(std::string(kind.interface) + ".Lock",
                   [this](LookAlike& saver, sd_bus_message* call) {
                       lockError.empty() ? saver.reply(call) : saver.fail(call, lockError);
                   });
    }
    void setActive(bool value) {
        active = value;
        service.signal(kind_.path, kind_.interface, "ActiveChanged",
                       [value](sd_bus_message* message) {
                           sd_bus_message_append(message, "b", value ? 1 : 0);
                       });
    }

    LookAlike service;
    bool active = false;
    std::string lockError;

private:
    ScreenSaverService kind_;
};

const ScreenSaverService& saverNamed(std::string_view name) {
    for (const auto& service : ScreenSavers::services)
        if (service.name == name) return service;
    throw std::runtime_error("no such screen saver");
}

struct ScreenLockTest : testing::Test {
    CapturedLog log;
    BusLoop loop; // one bus plays both: the names do not collide
    dbus::Connection systemBus{loop.opener(), loop.attacher(), loop.time};
    dbus::Connection sessionBus{loop.opener(), loop.attacher(), loop.time};
    LoginSession session{systemBus};
    ScreenSavers savers{sessionBus, loop.time};
    FakeProcesses processes;
    LockerWatch lockers{processes, loop.time, lockerPatterns({})};
    ScreenLockWatcher watcher{session, savers, lockers};
    LogindLock logindLock{session};
    ScreenSaverLock saverLock{savers};
    LockerLock lockerLock{processes, lockers, {}, DisplayKind::wayland};
    LockSequence lock{{&logindLock, &saverLock, &lockerLock}, loop.time, watcher};
    std::string events; // L and U, one an event
    Subscription listening = watcher.observe(
        [this](SessionEvent event) { events += event == SessionEvent::locked ? 'L' : 'U'; });

    [[nodiscard]] bool findsSession() {
        const bool found = loop.runUntil([&] { return session.path().get() == sessionPath; });
        loop.settle();
        return found;
    }
    [[nodiscard]] bool eventsBecome(const std::string& expected) {
        return loop.runUntil([&] { return events == expected; });
    }
    void settleLong() {
        for (int round = 0; round < 3; ++round)
            loop.settle();
    }
};

} // namespace

TEST_F(ScreenLockTest, AsksLogindForTheOwnSessionExactlyOnce) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    ASSERT_TRUE(findsSession());
    lock.lock();
    settleLong();
    EXPECT_EQ(logind.service.calls("Lock"), 1);
    EXPECT_EQ(saver.service.calls("Lock"), 0);
}

TEST_F(ScreenLockTest, FindsTheSessionThroughTheUsersRecord) {
    unsetenv("XDG_SESSION_ID");
    LookAlikeLogind logind(loop);
    logind.sessionId = "nobody's";
    ASSERT_TRUE(findsSession());
}

TEST_F(ScreenLockTest, FindsTheSessionThatTheEnvironmentNames) {
    setenv("XDG_SESSION_ID", "c1", 1);
    LookAlikeLogind logind(loop);
    logind.sessionId = "c1";
    logind.display = "/elsewhere";
    ASSERT_TRUE(findsSession());
    unsetenv("XDG_SESSION_ID");
}

TEST_F(ScreenLockTest, WithoutLogindTheScreenSaverThatRunsIsAsked) {
    LookAlikeSaver saver(loop, saverNamed("org.cinnamon.ScreenSaver"));
    settleLong();
    lock.lock();
    ASSERT_TRUE(loop.runUntil([&] { return saver.service.calls("Lock") == 1; }));
    settleLong();
    EXPECT_EQ(saver.service.calls("Lock"), 1);
}

TEST_F(ScreenLockTest, WhenLogindRefusesTheScreenSaverIsAsked) {
    LookAlikeLogind logind(loop);
    logind.lockError = "org.freedesktop.DBus.Error.AccessDenied";
    LookAlikeSaver saver(loop, saverNamed("org.gnome.Shell.ScreenShield"));
    ASSERT_TRUE(findsSession());
    lock.lock();
    ASSERT_TRUE(loop.runUntil([&] { return saver.service.calls("Lock") == 1; }));
}

TEST_F(ScreenLockTest, AScreenSaverThatRefusesPassesItOn) {
    LookAlikeSaver first(loop, saverNamed("org.kde.screensaver"));
    first.lockError = "org.freedesktop.DBus.Error.UnknownMethod";
    LookAlikeSaver second(loop, saverNamed("org.freedesktop.ScreenSaver"));
    settleLong();
    lock.lock();
    ASSERT_TRUE(loop.runUntil([&] { return second.service.calls("Lock") == 1; }));
    EXPECT_EQ(first.service.calls("Lock"), 1);
}

TEST_F(ScreenLockTest, WithNobodyToAskItStaysSilent) {
    settleLong();
    lock.lock();
    settleLong();
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(ScreenLockTest, LogindsHintIsToldOnEdgesOnly) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    for (const bool hint : {true, true, false, false, true})
        logind.setHint(hint);
    ASSERT_TRUE(eventsBecome("LUL"));
    settleLong();
    EXPECT_EQ(events, "LUL");
}

TEST_F(ScreenLockTest, AHintThatIsOnlyInvalidatedIsReadAgain) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    logind.invalidateHint(true);
    ASSERT_TRUE(eventsBecome("L"));
}

TEST_F(ScreenLockTest, ASessionThatIsLockedAlreadyIsToldAtTheStart) {
    LookAlikeLogind logind(loop);
    logind.hint = true;
    ASSERT_TRUE(eventsBecome("L"));
}

TEST_F(ScreenLockTest, ARequestToLockIsNoFact) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    logind.service.signal(sessionPath, sessionInterface, "Lock");
    logind.service.signal(sessionPath, sessionInterface, "Unlock");
    settleLong();
    EXPECT_EQ(events, "");
}

TEST_F(ScreenLockTest, WithoutAHintTheScreenSaverTells) {
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    settleLong();
    saver.setActive(true);
    saver.setActive(true);
    saver.setActive(false);
    ASSERT_TRUE(eventsBecome("LU"));
}

TEST_F(ScreenLockTest, AScreenSaverThatIsActiveAlreadyIsToldAtTheStart) {
    LookAlikeSaver saver(loop, saverNamed("org.xfce.ScreenSaver"));
    saver.active = true;
    ASSERT_TRUE(eventsBecome("L"));
}

TEST_F(ScreenLockTest, HintAndScreenSaverTogetherTellEachChangeOnce) {
    // As GNOME was seen to: the hint first, the screen saver a third of a second later, both ways.
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.gnome.Shell.ScreenShield"));
    ASSERT_TRUE(findsSession());
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
    saver.setActive(true);
    settleLong();
    logind.setHint(false);
    ASSERT_TRUE(eventsBecome("LU"));
    saver.setActive(false);
    settleLong();
    EXPECT_EQ(events, "LU");
}

TEST_F(ScreenLockTest, AStrangersSignalIsNotBelieved) {
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    LookAlike stranger(loop, "com.example.Stranger");
    settleLong();
    const auto& kind = saverNamed("org.mate.ScreenSaver");
    stranger.signal(kind.path, kind.interface, "ActiveChanged",
                    [](sd_bus_message* message) { sd_bus_message_append(message, "b", 1); });
    saver.service.signal(kind.path, kind.interface, "ActiveChanged", [](sd_bus_message* message) {
        sd_bus_message_append(message, "s", "ja"); // the right sender with the wrong type
    });
    settleLong();
    EXPECT_EQ(events, "");
}

TEST_F(ScreenLockTest, AScreenSaverThatCrashesUnlocksOnlyIfItStaysAway) {
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    settleLong();
    saver.setActive(true);
    ASSERT_TRUE(eventsBecome("L"));
    saver.service.vanish();
    loop.pass(1s);
    saver.service.appear();
    loop.pass(10s);
    EXPECT_EQ(events, "L");
    saver.service.vanish();
    loop.pass(2s - 1ns);
    EXPECT_EQ(events, "L");
    loop.pass(1ns);
    EXPECT_EQ(events, "LU");
}

TEST_F(ScreenLockTest, ALogindThatRestartsIsFollowedAgain) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
    logind.service.vanish();
    settleLong();
    EXPECT_EQ(events, "L"); // no word is no unlock
    logind.service.appear();
    ASSERT_TRUE(findsSession());
    logind.setHint(false);
    ASSERT_TRUE(eventsBecome("LU"));
}

TEST_F(ScreenLockTest, AScreenSaverThatAnswersNeverIsNoRefusal) {
    LookAlikeSaver slow(loop, saverNamed("org.cinnamon.ScreenSaver"));
    LookAlikeSaver other(loop, saverNamed("org.mate.ScreenSaver"));
    slow.service.on("org.cinnamon.ScreenSaver.Lock", [](LookAlike&, sd_bus_message*) {});
    settleLong();
    lock.lock();
    ASSERT_TRUE(loop.runUntil([&] { return slow.service.calls("Lock") == 1; }));
    settleLong();
    EXPECT_EQ(other.service.calls("Lock"), 0);
}

TEST_F(ScreenLockTest, WhenNothingComesOfLogindsSignalTheScreenSaverIsAskedAndThenALocker) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    processes.installed = {"swaylock"};
    ASSERT_TRUE(findsSession());
    settleLong();
    lock.lock();
    loop.pass(LockSequence::patience - 1ns);
    EXPECT_EQ(logind.service.calls("Lock"), 1);
    EXPECT_EQ(saver.service.calls("Lock"), 0);
    loop.pass(1ns);
    EXPECT_EQ(saver.service.calls("Lock"), 1);
    EXPECT_TRUE(processes.started.empty());
    loop.pass(LockSequence::patience);
    EXPECT_EQ(processes.started.size(), 1U);
    EXPECT_EQ(events, "");
    loop.pass(LockerWatch::settling);
    EXPECT_EQ(events, "L");
    processes.end(processes.latest());
    EXPECT_EQ(events, "LU");
}

TEST_F(ScreenLockTest, ALockThatIsConfirmedInTimeAsksNobodyElse) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    processes.installed = {"swaylock"};
    ASSERT_TRUE(findsSession());
    settleLong();
    lock.lock();
    loop.pass(LockSequence::patience - 1ns);
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
    loop.pass(1h);
    EXPECT_EQ(saver.service.calls("Lock"), 0);
    EXPECT_TRUE(processes.started.empty());
}

TEST_F(ScreenLockTest, WhoUnlocksRightAfterTheLockIsNotLockedOutByTheNextWay) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    processes.installed = {"swaylock"};
    ASSERT_TRUE(findsSession());
    lock.lock();
    loop.pass(200ms);
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
    loop.pass(1100ms); // a finger on the reader
    logind.setHint(false);
    ASSERT_TRUE(eventsBecome("LU"));
    loop.pass(LockSequence::patience);
    loop.pass(LockSequence::patience);
    EXPECT_EQ(saver.service.calls("Lock"), 0);
    EXPECT_TRUE(processes.started.empty());
}

TEST_F(ScreenLockTest, ALockerThatSomebodyStartsOnLogindsSignalIsFoundWhoeverAskedLogind) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    loop.pass(1s);
    const int looks = processes.looks;
    loop.pass(1h);
    EXPECT_EQ(processes.looks, looks);
    logind.service.signal(sessionPath, sessionInterface, "Lock");
    settleLong();
    const ProcessId locker = processes.appear("swaylock");
    loop.pass(1s);
    EXPECT_EQ(events, "L");
    processes.end(locker);
    EXPECT_EQ(events, "LU");
}

TEST_F(ScreenLockTest, OnceTheScreenIsLockedTheProcessesAreLeftAlone) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    lock.lock();
    settleLong();
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
    const int looks = processes.looks;
    loop.pass(1h);
    EXPECT_EQ(processes.looks, looks);
}

TEST_F(ScreenLockTest, HintScreenSaverAndLockerInEveryOrderTellEachChangeOnce) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    ASSERT_TRUE(findsSession());
    settleLong();
    std::vector<int> order{0, 1, 2};
    std::string expected;
    do {
        std::optional<ProcessId> locker;
        lockers.expect();
        const auto say = [&](int who, bool locked) {
            if (who == 0) logind.setHint(locked);
            if (who == 1) saver.setActive(locked);
            if (who == 2 && locked) locker = processes.appear("swaylock");
            if (who == 2 && !locked) processes.end(*locker);
            loop.pass(1s);
        };
        for (const int who : order)
            say(who, true);
        for (const int who : order)
            say(who, false);
        expected += "LU";
        EXPECT_EQ(events, expected);
    } while (std::ranges::next_permutation(order).found);
}

TEST_F(ScreenLockTest, ALockThatIsConfirmedLateIsStillAFact) {
    LookAlikeLogind logind(loop);
    ASSERT_TRUE(findsSession());
    lock.lock();
    loop.pass(30s);
    EXPECT_EQ(events, "");
    logind.setHint(true);
    ASSERT_TRUE(eventsBecome("L"));
}

TEST_F(ScreenLockTest, ALogindThatDoesNotAnswerHoldsNothingUp) {
    LookAlikeLogind logind(loop);
    LookAlikeSaver saver(loop, saverNamed("org.mate.ScreenSaver"));
    logind.service.on(std::string(sessionInterface) + ".Lock", [](LookAlike&, sd_bus_message*) {});
    ASSERT_TRUE(findsSession());
    settleLong();
    lock.lock();
    loop.pass(LockSequence::patience);
    EXPECT_EQ(saver.service.calls("Lock"), 1);
    saver.setActive(true);
    ASSERT_TRUE(eventsBecome("L"));
}
