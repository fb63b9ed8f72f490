#include "platform/locker_watch.h"

#include "base/virtual_time.h"
#include "tests/support/fake_processes.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct LockerWatchTest : testing::Test {
    VirtualTime time{TimePoint{}};
    FakeProcesses processes;
    LockerWatch watch{processes, time, {{.name = "swaylock"}, {.name = "i3lock"}}};
    std::string changes; // L and U, one a change
    Subscription listening =
        watch.locked().onChange([this](bool locked) { changes += locked ? 'L' : 'U'; });

    /// The look at the start is over.
    void SetUp() override { time.advance(1ms); }
};

} // namespace

TEST_F(LockerWatchTest, WithoutALockThatIsExpectedItDoesNotLook) {
    const int looks = processes.looks;
    EXPECT_EQ(looks, 1);
    processes.appear("swaylock");
    time.advance(1h);
    EXPECT_EQ(processes.looks, looks);
    EXPECT_EQ(changes, "");
}

TEST_F(LockerWatchTest, ALockerThatRunsAtTheStartIsFound) {
    FakeProcesses busy;
    const ProcessId locker = busy.appear("i3lock");
    LockerWatch started{busy, time, {{.name = "i3lock"}}};
    time.advance(LockerWatch::settling);
    EXPECT_TRUE(started.locked().get());
    busy.end(locker);
    EXPECT_FALSE(started.locked().get());
}

TEST_F(LockerWatchTest, ALockerThatAppearsAfterTheRequestConfirmsOnceItHasSettled) {
    watch.expect();
    time.advance(300ms);
    processes.appear("swaylock");
    time.advance(100ms); // found now
    time.advance(LockerWatch::settling - 1ns);
    EXPECT_EQ(changes, "");
    time.advance(1ns);
    EXPECT_EQ(changes, "L");
}

TEST_F(LockerWatchTest, OneThatEndsAtOnceHasLockedNothing) {
    watch.expect();
    const ProcessId locker = processes.appear("swaylock");
    time.advance(LockerWatch::lookInterval);
    processes.end(locker);
    time.advance(1min);
    EXPECT_EQ(changes, "");
}

TEST_F(LockerWatchTest, ItsEndIsTheUnlock) {
    watch.expect();
    const ProcessId locker = processes.appear("swaylock");
    time.advance(1s);
    const int looks = processes.looks;
    time.advance(1h);
    EXPECT_EQ(processes.looks, looks); // it is followed, not looked for
    EXPECT_EQ(changes, "L");
    processes.end(locker);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockerWatchTest, OfSeveralProcessesTheLastOneUnlocks) {
    watch.expect();
    const ProcessId first = processes.appear("swaylock");
    const ProcessId second = processes.appear("swaylock"); // asks for the password
    time.advance(1s);
    processes.end(first);
    EXPECT_EQ(changes, "L");
    processes.end(second);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockerWatchTest, OneThatGoesToTheBackgroundIsStillLocking) {
    watch.expect();
    const ProcessId foreground = processes.appear("i3lock");
    time.advance(1s);
    EXPECT_EQ(changes, "L");
    const ProcessId background = processes.appear("i3lock");
    processes.end(foreground);
    time.advance(1h);
    EXPECT_EQ(changes, "L");
    processes.end(background);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockerWatchTest, ItLooksNoLongerThanALockIsWaitedFor) {
    watch.expect();
    time.advance(LockerWatch::attention);
    const int looks = processes.looks;
    EXPECT_GE(looks, 20);
    processes.appear("swaylock");
    time.advance(1h);
    EXPECT_EQ(processes.looks, looks);
    EXPECT_EQ(changes, "");
}

TEST_F(LockerWatchTest, AfterRelaxingItLooksNoMore) {
    watch.expect();
    watch.relax();
    const int looks = processes.looks;
    time.advance(1h);
    EXPECT_EQ(processes.looks, looks);
}

TEST_F(LockerWatchTest, AProcessThatCannotBeFollowedIsNoLocker) {
    // Its end would never be known, and the screen be locked for ever.
    processes.canFollow = false;
    processes.appear("swaylock");
    watch.expect();
    time.advance(LockerWatch::attention);
    EXPECT_EQ(changes, "");
    EXPECT_FALSE(watch.look());
}
