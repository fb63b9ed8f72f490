#include "platform/linux/idle/seat_idle.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{1000h};

const SeatIdle watched{start, false};
const SeatIdle heldUp{start, true};

TEST(SeatIdle, NobodyIsIdleBeforeTheFirstEvent) { EXPECT_EQ(watched.idleTime(start + 1h), 0s); }

TEST(SeatIdle, TwoMinutesWithoutAWordAreAFilmWhereAFilmCanBe) {
    SeatIdle seat = heldUp;
    EXPECT_EQ(seat.idleTime(start + 120s - 1ns), 0s);
    EXPECT_EQ(seat.idleTime(start + 120s), std::nullopt);
    EXPECT_EQ(seat.idleTime(start + 120s + 1ns), std::nullopt);
    seat.becameIdle(start + 200s);
    EXPECT_EQ(seat.idleTime(start + 400s), 201s);
    seat.becameActive(start + 500s); // by hands, or by a film that begins
    EXPECT_EQ(seat.idleTime(start + 620s - 1ns), 0s);
    EXPECT_EQ(seat.idleTime(start + 620s), std::nullopt);
}

TEST(SeatIdle, TheTimeoutCountsAsIdleAlready) {
    SeatIdle seat = watched;
    seat.becameIdle(start);
    EXPECT_EQ(seat.idleTime(start), 1s);
    EXPECT_EQ(seat.idleTime(start + 9s), 10s);
}

TEST(SeatIdle, TouchEndsIt) {
    SeatIdle seat = watched;
    seat.becameIdle(start);
    seat.becameActive(start);
    EXPECT_EQ(seat.idleTime(start + 9s), 0s);
    seat.becameIdle(start + 20s);
    EXPECT_EQ(seat.idleTime(start + 21s), 2s);
}

TEST(SeatIdle, ToldTwiceItCountsFromTheFirst) {
    SeatIdle seat = watched;
    seat.becameIdle(start);
    seat.becameIdle(start + 5s);
    EXPECT_EQ(seat.idleTime(start + 9s), 10s);
}

} // namespace
