#include "insight/signal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint dawn{std::chrono::hours{480'000}};

std::vector<Signal::Point> pointsOf(const std::vector<int>& strengths) {
    std::vector<Signal::Point> points;
    for (const int rssi : strengths)
        points.push_back({dawn + std::chrono::seconds{points.size()}, rssi});
    return points;
}

} // namespace

TEST(Ranks, FindsWhatSortingFinds) {
    std::mt19937 dice(17);
    std::vector<std::int8_t> values(1000);
    for (std::int8_t& value : values)
        value = static_cast<std::int8_t>(static_cast<int>(dice() % 256) - 128);
    const Ranks ranks(values);
    for (int i = 0; i < 2000; ++i) {
        const std::size_t from = dice() % values.size();
        const std::size_t to = from + 1 + dice() % (values.size() - from);
        std::vector<std::int8_t> sorted(values.begin() + static_cast<std::ptrdiff_t>(from),
                                        values.begin() + static_cast<std::ptrdiff_t>(to));
        std::ranges::sort(sorted);
        const std::size_t rank = dice() % sorted.size();
        ASSERT_EQ(ranks.at(from, to, rank), sorted[rank]) << from << " " << to << " " << rank;
    }
}

TEST(Signal, TellsTheWeakestTheMiddleAndTheStrongest) {
    const Signal signal(pointsOf({-50, -90, -60, -40, -70}));
    EXPECT_EQ(signal.within({dawn, dawn + 5s}), (Strengths{-90, -60, -40}));
    EXPECT_EQ(signal.within({dawn, dawn + 4s}), (Strengths{-90, -60, -40}));
    EXPECT_EQ(signal.within({dawn + 1s, dawn + 3s}), (Strengths{-90, -90, -60}));
}

TEST(Signal, BeginsWithASpanAndEndsBeforeItsEnd) {
    const Signal signal(pointsOf({-50, -60}));
    EXPECT_EQ(signal.within({dawn, dawn + 1s}), (Strengths{-50, -50, -50}));
    EXPECT_EQ(signal.within({dawn + 1ns, dawn + 1s + 1ns}), (Strengths{-60, -60, -60}));
    EXPECT_EQ(signal.within({dawn + 1ns, dawn + 1s}), std::nullopt);
}

TEST(Signal, HasAColumnForEveryPixelEachSampleInOne) {
    const Signal signal(pointsOf({-50, -90, -60, -40, -70}));
    const auto columns = signal.columns({dawn - 2s, dawn + 6s}, 4);
    ASSERT_EQ(columns.size(), 4U);
    EXPECT_EQ(columns[0], std::nullopt);
    EXPECT_EQ(columns[1], (Strengths{-90, -90, -50}));
    EXPECT_EQ(columns[2], (Strengths{-60, -60, -40}));
    EXPECT_EQ(columns[3], (Strengths{-70, -70, -70}));
    EXPECT_TRUE(signal.columns({dawn, dawn + 1s}, 0).empty());
}

TEST(Signal, WhatAClockThatWasSetBackTellsIsPutInOrder) {
    const Signal signal({{dawn + 9s, -50}, {dawn + 10s, -60}, {dawn + 3s, -70}});
    EXPECT_EQ(signal.within({dawn, dawn + 9s}), (Strengths{-70, -70, -70}));
    EXPECT_EQ(signal.within({dawn + 9s, dawn + 11s}), (Strengths{-60, -60, -50}));
}

TEST(Signal, AStrengthThatNoRadioHasIsHeldInItsRange) {
    const Signal signal(pointsOf({-1000, 1000}));
    EXPECT_EQ(signal.within({dawn, dawn + 2s}), (Strengths{-128, -128, 127}));
}

TEST(Signal, NothingIsNothing) {
    EXPECT_EQ(Signal().within({dawn, dawn + 1h}), std::nullopt);
    EXPECT_EQ(Signal().columns({dawn, dawn + 1h}, 2).size(), 2U);
}
