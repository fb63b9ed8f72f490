#include "base/time.h"

#include <gtest/gtest.h>

#include <limits>

using namespace wegslot;
using namespace std::chrono_literals;

TEST(Time, ADurationIsRoundedToTheNearestNanosecondAndNotTruncated) {
    EXPECT_EQ(rounded(Seconds{0.3}), 300ms);
    EXPECT_EQ(rounded(Seconds{4.35}), 4350ms); // 4.35e9 as a double lies below 4350000000
    EXPECT_EQ(rounded(Seconds{-0.0000000006}), -1ns);
}

TEST(Time, AnyDoubleGivesADuration) {
    EXPECT_EQ(rounded(Seconds{std::numeric_limits<double>::quiet_NaN()}), 0ns);
    EXPECT_EQ(rounded(Seconds{std::numeric_limits<double>::infinity()}), longestDuration);
    EXPECT_EQ(rounded(Seconds{-std::numeric_limits<double>::infinity()}), -longestDuration);
    EXPECT_EQ(rounded(Seconds{1e300}), longestDuration);
    EXPECT_EQ(rounded(Seconds{-1e300}), -longestDuration);
}

TEST(Time, MillisecondsRoundHalvesAwayFromZero) {
    EXPECT_EQ(toMilliseconds(Seconds{1.0004}).count(), 1.0);
    EXPECT_EQ(toMilliseconds(Seconds{0.0625}).count(), 0.063); // 62.5 ms exactly
    EXPECT_EQ(toMilliseconds(Seconds{1e300}).count(), 1e300);
}

TEST(Time, AnInstantBeyondTheCalendarIsHeldAtItsEnd) {
    EXPECT_EQ(later(TimePoint::max() - 1ns, 2ns), TimePoint::max());
    EXPECT_EQ(later(TimePoint::min() + 1ns, -2ns), TimePoint::min());
    EXPECT_EQ(later(TimePoint{5s}, 2s), TimePoint{7s});
}
