#include "app/local_time.h"

#include "tests/support/time_zone.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint midnight = std::chrono::sys_days{std::chrono::year{2026} / 11 / 22};

struct LocalTime : testing::Test {
    TimeZone zone{"Europe/Amsterdam"}; // an hour ahead in November
};

} // namespace

TEST_F(LocalTime, IsWrittenAsTheClockOnTheWallShowsIt) {
    EXPECT_EQ(localTime(midnight + 11h + 31min + 7s + 999ms), "22-11 12:31:07");
}

TEST_F(LocalTime, ATimeAloneIsTheLastSuchMoment) {
    const TimePoint now = midnight + 12h; // 13:00
    EXPECT_EQ(typedTime("12:31", now), midnight + 11h + 31min);
    EXPECT_EQ(typedTime("12:31:07", now), midnight + 11h + 31min + 7s);
    EXPECT_EQ(typedTime("13:00", now), now);
    EXPECT_EQ(typedTime("13:01", now), midnight - 24h + 12h + 1min);
}

TEST_F(LocalTime, ADayMayStandBeforeIt) {
    const TimePoint now = midnight;
    EXPECT_EQ(typedTime("2026-11-20", now), midnight - 48h - 1h);
    EXPECT_EQ(typedTime("2026-11-20 12:31", now), midnight - 48h + 11h + 31min);
    EXPECT_EQ(typedTime("2026-07-01T12:31:07", now),
              TimePoint{std::chrono::sys_days{std::chrono::year{2026} / 7 / 1}} + 10h + 31min + 7s);
}

TEST_F(LocalTime, WhatIsNoTimeIsNone) {
    for (const char* const text : {"", "12", "1:31", "24:00", "12:60", "12:31:60", "aa:bb", "+1:31",
                                   "-1:31", "2026-13-01", "2026-02-30", "2026-11-22 25:00",
                                   "2026-11-22 12:31:07.5", "12:31 ", "22-11-2026", "morgen"})
        EXPECT_EQ(typedTime(text, midnight), std::nullopt) << text;
}
