#include "insight/qt/local_zone.h"

#include "tests/support/time_zone.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

constexpr Day spring{std::chrono::local_days{std::chrono::year{2026} / 3 / 29}};
constexpr TimePoint springInUtc{std::chrono::sys_days{std::chrono::year{2026} / 3 / 29}};

} // namespace

TEST(LocalZone, ADayBeginsAtTheMidnightOfThePlace) {
    const TimeZone place("Europe/Amsterdam");
    const Zone zone = localZone(QLocale::c());
    EXPECT_EQ(zone.beginOf(spring), springInUtc - 1h);
    EXPECT_EQ(zone.dayOf(springInUtc - 1h - 1ns), spring - std::chrono::days{1});
    EXPECT_EQ(zone.dayOf(springInUtc - 1h), spring);
    EXPECT_EQ(zone.dayOf(springInUtc + 22h - 1ns), spring);
    EXPECT_EQ(zone.dayOf(springInUtc + 22h), spring + std::chrono::days{1});
}

TEST(LocalZone, ADayThatLosesAnHourIsShorter) {
    const TimeZone place("Europe/Amsterdam");
    EXPECT_EQ(localZone(QLocale::c()).span(spring).length(), 23h);
}

TEST(LocalZone, WritesAsTheLanguageDoes) {
    const TimeZone place("UTC");
    const TimePoint wall = springInUtc + 13h + 5min + 9s;
    EXPECT_EQ(localZone(QLocale::c()).clockTime(wall), "13:05");
    EXPECT_EQ(localZone(QLocale::c()).exactTime(wall), "13:05:09");
    const Zone dutch = localZone(QLocale(QLocale::Dutch, QLocale::Netherlands));
    EXPECT_EQ(dutch.exactTime(wall), "13:05:09");
    EXPECT_EQ(dutch.name(spring), "zondag 29 maart 2026");
    const Zone english = localZone(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_TRUE(english.exactTime(wall).starts_with("1:05:09"));
}
