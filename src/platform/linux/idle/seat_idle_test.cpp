#include "platform/linux/idle/seat_idle.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{1000h};

TEST(SeatIdle, NobodyIsIdleBeforeTheFirstEvent) { EXPECT_EQ(SeatIdle().idleTime(start + 1h), 0s); }

TEST(SeatIdle, TheTimeoutCountsAsIdleAlready) {
    SeatIdle seat;
    seat.becameIdle(start);
    EXPECT_EQ(seat.idleTime(start), 1s);
    EXPECT_EQ(seat.idleTime(start + 9s), 10s);
}

TEST(SeatIdle, TouchEndsIt) {
    SeatIdle seat;
    seat.becameIdle(start);
    seat.becameActive();
    EXPECT_EQ(seat.idleTime(start + 9s), 0s);
    seat.becameIdle(start + 20s);
    EXPECT_EQ(seat.idleTime(start + 21s), 2s);
}

TEST(SeatIdle, ToldTwiceItCountsFromTheFirst) {
    SeatIdle seat;
    seat.becameIdle(start);
    seat.becameIdle(start + 5s);
    EXPECT_EQ(seat.idleTime(start + 9s), 10s);
}

} // namespace
