#include "ui/qt/local_clock_time.h"

#include "tests/support/time_zone.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// A wall clock that is ahead of the steady one.
struct TwoClocks final : Clock {
    [[nodiscard]] TimePoint now() const override { return TimePoint{1h}; }
    [[nodiscard]] TimePoint wallClock() const override { return TimePoint{1h} + ahead; }
    Nanoseconds ahead{0};
};

const QLocale dutch(QLocale::Dutch, QLocale::Netherlands);

std::string written(const QLocale& language, Nanoseconds ahead, TimePoint steady) {
    TwoClocks clock;
    clock.ahead = ahead;
    return localClockTime(clock, language)(steady);
}

} // namespace

TEST(LocalClockTime, IsTheTimeOfTheWallWithoutDateOrSeconds) {
    const TimeZone zone("UTC");
    EXPECT_EQ(written(dutch, 0ns, TimePoint{14h + 30min + 59s}), "14:30");
    EXPECT_EQ(written(dutch, 2h, TimePoint{14h + 30min}), "16:30");
    EXPECT_EQ(written(dutch, 0ns, TimePoint{24h * 3 + 9h + 5min}), "09:05");
}

TEST(LocalClockTime, IsInTheShortFormOfTheLanguage) {
    const TimeZone zone("UTC");
    std::string american =
        written(QLocale(QLocale::English, QLocale::UnitedStates), 0ns, TimePoint{14h + 30min});
    // Qt 6.8 has the narrow blank that does not break (U+202F), 6.4 an ordinary one.
    if (const auto blank = american.find("\u202F"); blank != std::string::npos)
        american.replace(blank, 3, " ");
    EXPECT_EQ(american, "2:30 PM");
    EXPECT_EQ(written(QLocale::c(), 0ns, TimePoint{14h + 30min + 5s}), "14:30");
}

TEST(LocalClockTime, IsInTheZoneOfThePerson) {
    const TimeZone zone("Europe/Amsterdam");
    EXPECT_EQ(written(dutch, 0ns, TimePoint{14h + 30min}), "15:30"); // in winter
}

TEST(UntilMorning, IsUntilTheNextSixOnTheWall) {
    const TimeZone zone("UTC");
    const TimePoint midnight{24h * 400};
    EXPECT_EQ(untilMorning(midnight), 6h);
    EXPECT_EQ(untilMorning(midnight + 6h - 1ns), 1ns);
    EXPECT_EQ(untilMorning(midnight + 6h), 24h);
    EXPECT_EQ(untilMorning(midnight + 6h + 1ns), 24h - 1ns);
    EXPECT_EQ(untilMorning(midnight + 22h + 30min), 7h + 30min);
}

TEST(UntilMorning, ANightInWhichTheClocksAreSetIsShorterOrLonger) {
    const TimeZone zone("Europe/Amsterdam");
    // 22:00 there before the last Sundays of March and October.
    EXPECT_EQ(untilMorning(std::chrono::sys_days{std::chrono::year{2026} / 3 / 28} + 21h), 7h);
    EXPECT_EQ(untilMorning(std::chrono::sys_days{std::chrono::year{2026} / 10 / 24} + 20h), 9h);
}
