#include "history/packed.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint start{29'000'000min};

using States = std::vector<std::optional<KeyState>>;
using Instants = std::vector<TimePoint>;

/// What comes back of it.
KeyMinute returned(const KeyMinute& key) {
    const auto again = unpackedKey(packed(key, start), start);
    EXPECT_TRUE(again);
    return again ? *again : KeyMinute{};
}

Instants returned(const Instants& judged) {
    const auto again = unpackedJudged(packed(judged, start), start);
    EXPECT_TRUE(again);
    return again ? *again : Instants{};
}

/// A minute of one report every `period`, give or take a tenth of it.
KeyMinute heardEvery(std::chrono::milliseconds period) {
    std::minstd_rand dice(7); // NOLINT: the same each time
    KeyMinute key;
    for (auto at = 0ms; at < Minute::length; at += period) {
        const auto late = std::chrono::milliseconds{dice()} % (period / 5) - period / 10;
        key.samples.push_back({start + at + late, -60 - static_cast<int>(dice() % 30)});
    }
    return key;
}

} // namespace

TEST(Packed, AKeyComesBackAsItWas) {
    const KeyMinute key{.samples = {{start - 100h, -90},
                                    {start + 1ms, 127},
                                    {start + 1ms, -128},
                                    {start + 59'999ms, 0},
                                    {start + 30s, -1}}, // before the one before it
                        .states = {std::nullopt, KeyState::near, KeyState::near, KeyState::leaving,
                                   KeyState::away, std::nullopt}};
    const KeyMinute again = returned(key);
    EXPECT_EQ(again.samples, key.samples);
    EXPECT_EQ(again.states, key.states);
    EXPECT_TRUE(returned(KeyMinute{}).samples.empty());
}

TEST(Packed, StrengthsAreHeldWithinAByte) {
    const KeyMinute again = returned(KeyMinute{
        .samples = {{start, 128}, {start, -129}, {start, std::numeric_limits<int>::min()}},
        .states = {}});
    EXPECT_EQ(again.samples, (std::vector<Sample>{{start, 127}, {start, -128}, {start, -128}}));
}

TEST(Packed, InstantsAreRoundedDownToMilliseconds) {
    EXPECT_EQ(returned(Instants{start + 1ms - 1ns, start + 1ms, start + 2ms - 1ns, start - 1ns}),
              (Instants{start, start + 1ms, start + 1ms, start - 1ms}));
}

TEST(Packed, EveryInstantThatThereIsComesBack) {
    const auto inMilliseconds = [](TimePoint at) {
        return TimePoint{std::chrono::floor<std::chrono::milliseconds>(at)};
    };
    const TimePoint first = inMilliseconds(TimePoint::min() + 1ms);
    const TimePoint last = inMilliseconds(TimePoint::max());
    EXPECT_EQ(returned(Instants{first, last, first}), (Instants{first, last, first}));
    EXPECT_EQ(returned(Instants{TimePoint::min()}), Instants{first});
}

TEST(Packed, JudgementsInStepTakeAFewBytesHoweverManyThereAre) {
    Instants judged;
    for (int i = 0; i < 60; ++i)
        judged.push_back(start + 250ms + i * 1s);
    EXPECT_EQ(returned(judged), judged);
    EXPECT_EQ(packed(judged, start).size(), 6U);
    const KeyMinute key{.samples = {}, .states = States(60, KeyState::near)};
    EXPECT_EQ(packed(key, start).size(), 3U);
}

TEST(Packed, MoreJudgementsThanThereAreAreLeftOut) {
    for (const auto count : {mostJudgements - 1, mostJudgements, mostJudgements + 1}) {
        const auto kept = std::min(count, mostJudgements);
        EXPECT_EQ(returned(Instants(count, start)).size(), kept);
        EXPECT_EQ(returned(KeyMinute{.samples = {}, .states = States(count)}).states.size(), kept);
    }
}

TEST(Packed, AStrengthTakesThreeBytes) {
    for (const auto& [period, count] : {std::pair{100ms, 600U}, {1000ms, 60U}}) {
        const KeyMinute key = heardEvery(period);
        ASSERT_EQ(key.samples.size(), count);
        EXPECT_LE(packed(key, start).size(), 3 * count + 2);
        EXPECT_EQ(returned(key).samples, key.samples);
    }
}

TEST(Packed, BytesThatNobodyPackedAreAFailure) {
    const auto bytes = [](std::vector<unsigned> values) {
        return std::string(values.begin(), values.end());
    };
    EXPECT_FALSE(unpackedKey("", start));
    EXPECT_FALSE(unpackedKey(bytes({1}), start));                // a sample is missing
    EXPECT_FALSE(unpackedKey(bytes({1, 2}), start));             // and its strength
    EXPECT_TRUE(unpackedKey(bytes({1, 2, 3}), start));           // it is there
    EXPECT_FALSE(unpackedKey(bytes({1, 2, 3, 0}), start));       // a run without its length
    EXPECT_TRUE(unpackedKey(bytes({1, 2, 3, 3, 1}), start));     // the last state
    EXPECT_FALSE(unpackedKey(bytes({1, 2, 3, 4, 1}), start));    // one that there is not
    EXPECT_FALSE(unpackedKey(bytes({0xFF, 0xFF, 0x7F}), start)); // two million samples
    EXPECT_FALSE(unpackedJudged(bytes({0x80}), start));          // a number without its end

    const std::vector<unsigned> nines(9, 0xFF);
    std::vector<unsigned> most = nines;
    most.push_back(1);                                             // 2^64 - 1
    EXPECT_FALSE(unpackedJudged(bytes(most) + bytes({1}), start)); // no such instant
    EXPECT_FALSE(unpackedJudged(bytes({0}) + bytes(most), start)); // so often
    std::vector<unsigned> tooMuch = nines;
    tooMuch.push_back(2); // 2^64
    EXPECT_FALSE(unpackedJudged(bytes(tooMuch) + bytes({1}), start));
    EXPECT_FALSE(unpackedJudged(bytes({0, 0x81, 0x80, 4}), start)); // once more than there may be
    EXPECT_TRUE(unpackedJudged(bytes({0, 0x80, 0x80, 4}), start));

    EXPECT_FALSE(unpackedEvents(bytes({2, 5}) + "text", start)); // a byte is missing
    EXPECT_FALSE(unpackedEvents(bytes({2, 4}) + "text", start)); // nothing that happens
    EXPECT_FALSE(unpackedEvents(bytes({2, 0}), start));
    EXPECT_TRUE(unpackedEvents(bytes({2, 14}) + R"({"input":true})", start));
    EXPECT_TRUE(unpackedEvents("", start)->empty());
}

TEST(Packed, EventsComeBackInTheirOrder) {
    const auto events = unpackedEvents(
        packed(std::vector<Event>{{start + 2s, trace::Input{}},
                                  {start + 2s, Opinion{.of = start, .opinion = Opinion::Of::late}},
                                  {start + 1500us, trace::Camera{true}}},
               start),
        start);
    ASSERT_TRUE(events);
    ASSERT_EQ(events->size(), 3U);
    EXPECT_EQ(events->at(0).at, start + 2s);
    EXPECT_TRUE(std::holds_alternative<trace::Input>(std::get<trace::Event>(events->at(0).what)));
    EXPECT_EQ(events->at(1).what.index(), 2U);
    EXPECT_EQ(events->at(2).at, start + 1ms);
    EXPECT_TRUE(std::get<trace::Camera>(std::get<trace::Event>(events->at(2).what)).value);
}
