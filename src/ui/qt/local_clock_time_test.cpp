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
    EXPECT_EQ(
        written(QLocale(QLocale::English, QLocale::UnitedStates), 0ns, TimePoint{14h + 30min}),
        "2:30 PM");
    EXPECT_EQ(written(QLocale::c(), 0ns, TimePoint{14h + 30min + 5s}), "14:30");
}

TEST(LocalClockTime, IsInTheZoneOfThePerson) {
    const TimeZone zone("Europe/Amsterdam");
    EXPECT_EQ(written(dutch, 0ns, TimePoint{14h + 30min}), "15:30"); // in winter
}
