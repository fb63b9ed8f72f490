#include "scanner/signal_history.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{1000h};
constexpr Nanoseconds window = 5s;

SignalHistory historyOf(std::initializer_list<int> values) {
    SignalHistory history;
    for (const int value : values)
        history.add(start, value);
    return history;
}

} // namespace

TEST(SignalHistory, AnOddNumberGivesTheMiddleOne) {
    EXPECT_EQ(historyOf({-60, -70, -65}).median(start, window), Dbm{-65});
    EXPECT_EQ(historyOf({-60}).median(start, window), Dbm{-60});
}

TEST(SignalHistory, AnEvenNumberGivesTheStrongerOfTheTwoInTheMiddle) {
    EXPECT_EQ(historyOf({-60, -70}).median(start, window), Dbm{-60});
    EXPECT_EQ(historyOf({-50, -60, -70, -80}).median(start, window), Dbm{-60});
}

TEST(SignalHistory, WithoutSamplesThereIsNone) {
    EXPECT_EQ(SignalHistory{}.median(start, window), std::nullopt);
}

TEST(SignalHistory, ASampleExactlyAsOldAsTheWindowCounts) {
    const auto history = historyOf({-60});
    EXPECT_EQ(history.median(start + 4990ms, window), Dbm{-60});
    EXPECT_EQ(history.median(start + 5s, window), Dbm{-60});
    EXPECT_EQ(history.median(start + 5s + 1ns, window), std::nullopt);
    EXPECT_EQ(history.median(start + 5010ms, window), std::nullopt);
}

TEST(SignalHistory, AWindowOfNothingOrLessHoldsWhatIsNow) {
    const auto history = historyOf({-60});
    EXPECT_EQ(history.median(start, 0s), Dbm{-60});
    EXPECT_EQ(history.median(start, -1s), std::nullopt);
}

TEST(SignalHistory, ASampleOfEightSecondsSurvivesTheNextInsertion) {
    auto history = historyOf({-60});
    history.add(start + 7999ms, -70);
    EXPECT_EQ(history.size(), 2U);
    history.add(start + 8s, -70);
    EXPECT_EQ(history.size(), 3U);
    history.add(start + 8s + 1ns, -70);
    EXPECT_EQ(history.size(), 3U); // the first is gone, the new one has come
    EXPECT_EQ(history.median(start + 8s + 1ns, 9s), Dbm{-70});
}

TEST(SignalHistory, ATalkativeDeviceKeepsOnlyItsLastEightSeconds) {
    SignalHistory history;
    for (int i = 0; i <= 20000; ++i)
        history.add(start + i * 1ms, -60 - i / 10000);
    EXPECT_EQ(history.size(), 8001U);
    EXPECT_EQ(history.median(start + 20s, window), Dbm{-61});
}

TEST(SignalHistory, MergesInOrderOfTime) {
    SignalHistory first;
    first.add(start, -50);
    first.add(start + 4s, -52);
    SignalHistory second;
    second.add(start + 2s, -80);
    second.add(start + 6s, -90);
    first.merge(second);
    EXPECT_EQ(first.size(), 4U);
    EXPECT_EQ(first.median(start + 6s, 2s), Dbm{-52}); // of -52 and -90
    EXPECT_EQ(first.median(start + 6s, 4s), Dbm{-80}); // of -80, -52 and -90
}
