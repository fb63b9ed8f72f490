#include "control/pause_allowance.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::control;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint firstPause{1000h};

} // namespace

TEST(PauseAllowance, NoPauseReachesBeyondFourHoursAfterTheFirst) {
    PauseAllowance allowance;
    EXPECT_EQ(allowance.granted(15min, firstPause), 15min);
    EXPECT_EQ(allowance.granted(4h, firstPause + 1h), 3h);
    EXPECT_EQ(allowance.granted(1h, firstPause + 3h - 1ns), 1h);
    EXPECT_EQ(allowance.granted(1h, firstPause + 3h), 1h);
    EXPECT_EQ(allowance.granted(1h, firstPause + 3h + 1ns), 1h - 1ns);
}

TEST(PauseAllowance, AfterFourHoursThereIsNoneHoweverLongAgoTheyWere) {
    PauseAllowance allowance;
    EXPECT_EQ(allowance.granted(4h, firstPause), 4h);
    EXPECT_EQ(allowance.granted(1s, firstPause + 4h - 1ns), 1ns);
    EXPECT_LE(allowance.granted(1s, firstPause + 4h), 0ns);
    EXPECT_LE(allowance.granted(1s, firstPause + 400h), 0ns);
}

TEST(PauseAllowance, APersonsActionMakesTheNextAFirstOne) {
    PauseAllowance allowance;
    EXPECT_EQ(allowance.granted(4h, firstPause), 4h);
    allowance.renew();
    EXPECT_EQ(allowance.granted(4h, firstPause + 5h), 4h);
    EXPECT_EQ(allowance.granted(4h, firstPause + 6h), 3h);
}
