#include "platform/locker_lock.h"

#include "base/virtual_time.h"
#include "tests/support/captured_log.h"
#include "tests/support/fake_processes.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct LockerLockTest : testing::Test {
    CapturedLog log;
    VirtualTime time{TimePoint{}};
    FakeProcesses processes;
    int refusals = 0;

    void request(const LockCommand& own, DisplayKind display) {
        LockerWatch watch{processes, time, lockerPatterns(own)};
        LockerLock lock{processes, watch, own, display};
        lock.request([this] { ++refusals; });
    }
};

} // namespace

TEST_F(LockerLockTest, TheFirstInstalledLockerThatFitsTheDisplayIsStarted) {
    processes.installed = {"waylock", "gtklock", "slock", "i3lock"};
    request({}, DisplayKind::wayland);
    ASSERT_EQ(processes.started.size(), 1U);
    EXPECT_EQ(processes.started.back(), LockCommand{"gtklock"});
    processes.end(processes.latest());
    request({}, DisplayKind::x11);
    EXPECT_EQ(processes.started.back(), (LockCommand{"i3lock", "--nofork"}));
    EXPECT_EQ(refusals, 0);
}

TEST_F(LockerLockTest, WithoutAnyOrWithoutADisplayItRefuses) {
    processes.installed = {"swaylock"};
    request({}, DisplayKind::x11);
    request({}, DisplayKind::none);
    EXPECT_EQ(refusals, 2);
    EXPECT_TRUE(processes.started.empty());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LockerLockTest, TheUsersCommandIsPreferredOnAnyDisplay) {
    processes.installed = {"swaylock", "mylock"};
    request({"mylock", "--now", "two words"}, DisplayKind::none);
    ASSERT_EQ(processes.started.size(), 1U);
    EXPECT_EQ(processes.started.back(), (LockCommand{"mylock", "--now", "two words"}));
}

TEST_F(LockerLockTest, AnotherCommandCountsFromTheNextLockAndIsKnownWhoeverStartedIt) {
    processes.installed = {"oldlock", "newlock"};
    LockerWatch watch{processes, time, lockerPatterns({"oldlock"})};
    LockerLock lock{processes, watch, {"oldlock"}, DisplayKind::none};
    lock.request([] {});
    lock.setOwn({"newlock", "-f"});
    lock.request([] {});
    EXPECT_EQ(processes.started,
              (std::vector<LockCommand>{{"oldlock"}})); // it still has the screen
    processes.end(processes.latest());
    lock.request([] {});
    ASSERT_EQ(processes.started.size(), 2U);
    EXPECT_EQ(processes.started.back(), (LockCommand{"newlock", "-f"}));
    processes.end(processes.latest());
    EXPECT_FALSE(watch.look());
    processes.appear(LockCommand{"newlock", "-f"});
    EXPECT_TRUE(watch.look());
}

TEST_F(LockerLockTest, ACommandThatCannotBeStartedIsLoggedAndRefused) {
    request({"mylokc"}, DisplayKind::wayland);
    EXPECT_EQ(refusals, 1);
    EXPECT_EQ(log.messages,
              std::vector<std::string>{"Schermvergrendeling niet gestart: mylokc: not there"});
}

TEST_F(LockerLockTest, WhileALockerRunsNoneIsStarted) {
    processes.installed = {"swaylock", "mylock"};
    for (const LockCommand& running : {LockCommand{"hyprlock"}, LockCommand{"mylock", "-x"}}) {
        const ProcessId other = processes.appear(running);
        request({"mylock", "-x"}, DisplayKind::wayland);
        processes.end(other);
    }
    EXPECT_TRUE(processes.started.empty());
    EXPECT_EQ(refusals, 0);
}

TEST_F(LockerLockTest, AShellIsALockerOnlyWithTheUsersOwnWords) {
    processes.installed = {"sh"};
    processes.appear({"sh", "-c", "make"});
    request({"sh", "-c", "lock"}, DisplayKind::wayland);
    EXPECT_EQ(processes.started.size(), 1U);
}

TEST_F(LockerLockTest, TheOneThatWasStartedConfirmsAndUnlocks) {
    processes.installed = {"swaylock"};
    LockerWatch watch{processes, time, lockerPatterns({})};
    LockerLock lock{processes, watch, {}, DisplayKind::wayland};
    lock.request([this] { ++refusals; });
    time.advance(LockerWatch::settling - 1ns);
    EXPECT_FALSE(watch.locked().get());
    time.advance(1ns);
    EXPECT_TRUE(watch.locked().get());
    processes.end(processes.latest());
    EXPECT_FALSE(watch.locked().get());
}
