#include "base/virtual_time.h"

#include "base/delayed_calls.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct VirtualTimeTest : testing::Test {
    const TimePoint start{1000h};
    VirtualTime time{start};
    std::string calls;

    [[nodiscard]] auto note(char name) {
        return [this, name] { calls += name; };
    }
};

} // namespace

TEST_F(VirtualTimeTest, CallsRunInOrderOfTheirDueTime) {
    const auto later = time.after(2s, note('b'));
    const auto sooner = time.after(1s, note('a'));
    time.advance(3s);
    EXPECT_EQ(calls, "ab");
}

TEST_F(VirtualTimeTest, EqualDueTimesRunInTheOrderAskedFor) {
    const auto first = time.every(2s, note('a'));
    const auto second = time.after(2s, note('b'));
    const auto third = time.every(1s, note('c'));
    time.advance(2s);
    // At two seconds the third was armed anew at one second, after the others.
    EXPECT_EQ(calls, "cabc");
}

TEST_F(VirtualTimeTest, ACallRunsAtItsInstantAndNotBefore) {
    const auto timer = time.after(1s, note('a'));
    time.advance(1s - 1ns);
    EXPECT_EQ(calls, "");
    time.advance(1ns);
    EXPECT_EQ(calls, "a");
    time.advance(10s);
    EXPECT_EQ(calls, "a");
}

TEST_F(VirtualTimeTest, TheClockShowsTheDueTimeWhileACallRuns) {
    TimePoint seen;
    const auto timer = time.after(1s, [&] { seen = time.now(); });
    time.advance(5s);
    EXPECT_EQ(seen, start + 1s);
    EXPECT_EQ(time.now(), start + 5s);
}

TEST_F(VirtualTimeTest, AnEndedHandleCallsNothing) {
    auto timer = time.every(1s, note('a'));
    time.advance(2s);
    timer.reset();
    time.advance(2s);
    EXPECT_EQ(calls, "aa");
    EXPECT_EQ(time.pending(), 0U);
}

TEST_F(VirtualTimeTest, ACallMayEndItsOwnHandle) {
    Timer timer;
    timer = time.every(1s, [&] {
        timer.reset();
        calls += 'x';
    });
    time.advance(5s);
    EXPECT_EQ(calls, "x");
}

TEST_F(VirtualTimeTest, ADelayOfZeroOrLessRunsAtTheNextTurn) {
    const auto zero = time.after(0s, note('a'));
    const auto negative = time.after(-5s, note('b'));
    EXPECT_EQ(calls, "");
    time.advance(0s);
    EXPECT_EQ(calls, "ab");
}

TEST_F(VirtualTimeTest, ASteppedWallClockMovesNothingElse) {
    const auto timer = time.after(1s, note('a'));
    time.stepWallClock(-3600s);
    EXPECT_EQ(time.now(), start);
    EXPECT_EQ(time.wallClock(), start - 3600s);
    EXPECT_EQ(calls, "");
}

TEST_F(VirtualTimeTest, SleepMovesTheClocksAndNotTheScheduler) {
    const auto timer = time.after(10s, note('a'));
    time.sleep(3600s);
    EXPECT_EQ(time.now(), start + 3600s);
    time.advance(9s);
    EXPECT_EQ(calls, "");
    time.advance(1s);
    EXPECT_EQ(calls, "a");
}

TEST_F(VirtualTimeTest, ATimerMayOutliveTheScheduler) {
    Timer timer;
    {
        VirtualTime other{start};
        timer = other.after(1s, [] {});
    }
    timer.reset();
    EXPECT_FALSE(timer);
}

TEST_F(VirtualTimeTest, DelayedCallsEndWithTheirOwner) {
    {
        DelayedCalls delayed{time};
        delayed.after(1s, note('a'));
        delayed.after(3s, note('b'));
        time.advance(1s);
    }
    time.advance(5s);
    EXPECT_EQ(calls, "a");
    EXPECT_EQ(time.pending(), 0U);
}
