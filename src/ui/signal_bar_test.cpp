#include "ui/signal_bar.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{1h};

} // namespace

TEST(SignalBar, TheScaleGoesFromMinus100ToMinus30) {
    EXPECT_EQ(signalFraction(Dbm{-101}), 0);
    EXPECT_EQ(signalFraction(Dbm{-100}), 0);
    EXPECT_DOUBLE_EQ(signalFraction(Dbm{-99}), 1.0 / 70);
    EXPECT_DOUBLE_EQ(signalFraction(Dbm{-65}), 0.5);
    EXPECT_DOUBLE_EQ(signalFraction(Dbm{-31}), 69.0 / 70);
    EXPECT_EQ(signalFraction(Dbm{-30}), 1);
    EXPECT_EQ(signalFraction(Dbm{-29}), 1);
}

TEST(SignalBar, WithoutASignalThereIsOnlyTheMarker) {
    EXPECT_EQ(signalBar(std::nullopt, Dbm{-65}), (SignalBar{std::nullopt, 0.5}));
}

TEST(SignalBar, ASignalAtTheThresholdIsGood) {
    EXPECT_EQ(signalBar(Dbm{-76}, Dbm{-75}).fill->color, brand::orange);
    EXPECT_EQ(signalBar(Dbm{-75}, Dbm{-75}).fill->color, brand::success);
    EXPECT_EQ(signalBar(Dbm{-74}, Dbm{-75}).fill->color, brand::success);
    EXPECT_DOUBLE_EQ(signalBar(Dbm{-65}, Dbm{-75}).fill->fraction, 0.5);
}

TEST(SignalBar, ASignalThatIsThereIsAlwaysSeen) {
    EXPECT_EQ(fillLength(signalFraction(Dbm{-110}), 140), 8);
    EXPECT_EQ(fillLength(signalFraction(Dbm{-100}), 140), 8);
    EXPECT_EQ(fillLength(signalFraction(Dbm{-97}), 140), 8);
    EXPECT_EQ(fillLength(signalFraction(Dbm{-96}), 140), 8);
    EXPECT_DOUBLE_EQ(fillLength(signalFraction(Dbm{-95}), 140), 10);
    EXPECT_EQ(fillLength(signalFraction(Dbm{-30}), 140), 140);
    EXPECT_EQ(fillLength(signalFraction(Dbm{-10}), 140), 140);
}

TEST(SignalBar, TheMarkersMiddleIsOnTheThreshold) {
    EXPECT_EQ(markerStart(signalFraction(Dbm{-100}), 140), -1.25);
    EXPECT_EQ(markerStart(signalFraction(Dbm{-65}), 140), 68.75);
    EXPECT_EQ(markerStart(signalFraction(Dbm{-30}), 140), 138.75);
}

TEST(SignalBar, HasItsColorsAndMeasures) {
    EXPECT_EQ(SignalBar::trackColor, (Color{143, 150, 203, 0.18}));
    EXPECT_EQ(SignalBar::markerColor, brand::navy);
    EXPECT_EQ(SignalBar::markerWidth, 2.5);
    EXPECT_EQ(SignalBar::markerHeight, 14);
}

TEST(FillMotion, ABarThatAppearsStandsStill) {
    const FillMotion motion(0.4);
    EXPECT_FALSE(motion.isMoving(start));
    EXPECT_EQ(motion.at(start), 0.4);
}

TEST(FillMotion, ArrivesAfterHalfASecond) {
    FillMotion motion(0.2);
    motion.moveTo(0.8, start);
    EXPECT_DOUBLE_EQ(motion.at(start), 0.2);
    EXPECT_LT(motion.at(start + 499ms), 0.8);
    EXPECT_TRUE(motion.isMoving(start + 499ms));
    EXPECT_EQ(motion.at(start + 500ms), 0.8);
    EXPECT_FALSE(motion.isMoving(start + 500ms));
    EXPECT_EQ(motion.at(start + 501ms), 0.8);
}

TEST(FillMotion, IsFastAtFirst) {
    FillMotion motion(0);
    motion.moveTo(1, start);
    EXPECT_DOUBLE_EQ(motion.at(start + 250ms), 0.75);
    double last = 0;
    double step = 1;
    for (auto passed = 50ms; passed <= 500ms; passed += 50ms) {
        const double now = motion.at(start + passed);
        EXPECT_GT(now, last);
        EXPECT_LT(now - last, step);
        step = now - last;
        last = now;
    }
}

TEST(FillMotion, TurnsRoundWhereItIs) {
    FillMotion motion(0);
    motion.moveTo(1, start);
    motion.moveTo(0, start + 250ms);
    EXPECT_DOUBLE_EQ(motion.at(start + 250ms), 0.75);
    EXPECT_EQ(motion.at(start + 750ms), 0);
}

TEST(FillMotion, TheSameAimAgainDoesNotStartAnew) {
    FillMotion motion(0);
    motion.moveTo(1, start);
    motion.moveTo(1, start + 400ms);
    EXPECT_EQ(motion.at(start + 500ms), 1);
}
