#include "hud/countdown.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint deadline{500000h};
constexpr Seconds five{5};

Countdown before(Nanoseconds left, Seconds total = five) {
    return Countdown::at(deadline - left, deadline, total);
}

} // namespace

TEST(Countdown, NumberIsRoundedUpFromTheFirstNanosecondOn) {
    EXPECT_EQ(before(4s - 1ns).number, 4);
    EXPECT_EQ(before(4s).number, 4);
    EXPECT_EQ(before(4s + 1ns).number, 5);
    EXPECT_EQ(before(4010ms).number, 5);
}

TEST(Countdown, NumberIsZeroOnlyOnceTheDeadlineIsReached) {
    EXPECT_EQ(before(1ns).number, 1);
    EXPECT_EQ(before(0ns).number, 0);
    EXPECT_EQ(before(-1ns).number, 0);
    EXPECT_EQ(before(-1h).number, 0);
}

TEST(Countdown, RingIsFullAtTheStartAndEmptyAtTheDeadline) {
    EXPECT_EQ(before(5s).fraction, 1);
    EXPECT_EQ(before(2500ms).fraction, 0.5);
    EXPECT_EQ(before(1250ms).fraction, 0.25);
    EXPECT_EQ(before(0ns).fraction, 0);
    EXPECT_EQ(before(-1s).fraction, 0);
}

TEST(Countdown, RingIsNeverMoreThanFull) {
    EXPECT_LT(before(5s - 1ns).fraction, 1);
    EXPECT_EQ(before(5s + 1ns).fraction, 1);
    EXPECT_EQ(before(1h).fraction, 1);
}

TEST(Countdown, ThereIsARingOnlyForATotalAboveZero) {
    EXPECT_EQ(before(3s, Seconds{-1}), (Countdown{.fraction = 0, .number = 3}));
    EXPECT_EQ(before(3s, Seconds{0}), (Countdown{.fraction = 0, .number = 3}));
    EXPECT_EQ(before(0s, Seconds{0}), (Countdown{.fraction = 0, .number = 0}));
    constexpr double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(before(3s, Seconds{least}), (Countdown{.fraction = 1, .number = 3}));
    EXPECT_EQ(before(0s, Seconds{least}), (Countdown{.fraction = 0, .number = 0}));
}

TEST(Countdown, AnyTotalWillDo) {
    EXPECT_EQ(before(3s, Seconds{std::nan("")}), (Countdown{.fraction = 0, .number = 3}));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(before(3s, Seconds{infinity}), (Countdown{.fraction = 0, .number = 3}));
    EXPECT_EQ(before(3s, Seconds{-infinity}), (Countdown{.fraction = 0, .number = 3}));
    EXPECT_GT(before(3s, Seconds{1e300}).fraction, 0);
    EXPECT_LT(before(3s, Seconds{1e300}).fraction, 1e-299);
}

TEST(Countdown, InstantsAtTheEndsOfTimeAreNoSurprise) {
    const auto longest = Countdown::at(TimePoint::min(), TimePoint::max(), five);
    EXPECT_EQ(longest.fraction, 1);
    EXPECT_EQ(longest.number, 9'223'372'037);
    EXPECT_EQ(Countdown::at(TimePoint::max(), TimePoint::min(), five), Countdown{});
}
