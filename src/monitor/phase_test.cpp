#include "monitor/phase.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint instant =
    std::chrono::sys_days{std::chrono::year{2026} / 11 / 15} + 23h + 50min + 700ms;

} // namespace

TEST(Phase, IsDescribedByItsCase) {
    EXPECT_EQ(description(phase::Disabled{}, 0s), "disabled");
    EXPECT_EQ(description(phase::NoKeys{}, 0s), "noKeys");
    EXPECT_EQ(description(phase::WaitingForReturn{}, 0s), "waitingForReturn");
    EXPECT_EQ(description(phase::Present{}, 0s), "present");
    EXPECT_EQ(description(phase::Leaving{}, 0s), "leaving");
    EXPECT_EQ(description(phase::Locked{}, 0s), "locked");
}

TEST(Phase, ATextIsQuotedAndAnInstantIsInUtc) {
    EXPECT_EQ(description(phase::Paused{"Camera is in gebruik"}, 0s),
              "paused(\"Camera is in gebruik\")");
    EXPECT_EQ(description(phase::BluetoothUnavailable{"Bluetooth staat uit"}, 0s),
              "bluetoothUnavailable(\"Bluetooth staat uit\")");
    EXPECT_EQ(description(phase::Snoozed{instant}, 0s), "snoozed(2026-11-15 23:50:00 +0000)");
    EXPECT_EQ(description(phase::Warning{instant}, 0s), "warning(2026-11-15 23:50:00 +0000)");
}

TEST(Phase, AnInstantIsWrittenAsAPersonsClockWillShowIt) {
    EXPECT_EQ(description(phase::Snoozed{instant}, -1h), "snoozed(2026-11-15 22:50:00 +0000)");
}

TEST(Phase, IsEqualOnlyInCaseAndPayload) {
    EXPECT_EQ(Phase{phase::Paused{"a"}}, Phase{phase::Paused{"a"}});
    EXPECT_NE(Phase{phase::Paused{"a"}}, Phase{phase::Paused{"b"}});
    EXPECT_NE(Phase{phase::Paused{"a"}}, Phase{phase::BluetoothUnavailable{"a"}});
    EXPECT_NE(Phase{phase::Snoozed{instant}}, Phase{phase::Snoozed{instant + 1ns}});
    EXPECT_NE(Phase{phase::Snoozed{instant}}, Phase{phase::Warning{instant}});
    EXPECT_EQ(Phase{phase::Present{}}, Phase{phase::Present{}});
}
