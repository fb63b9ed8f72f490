#include "scanner/scan_policy.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Scan = ScanPolicy::Scan;

struct ScanPolicyTest : testing::Test {
    ScanPolicy policy;
    TimePoint now = World::start;
    const Uuid key = numbered(1);
    const Uuid other = numbered(2);

    Scan at(Nanoseconds sinceStart) { return policy.decide(now = World::start + sinceStart).scan; }

    /// How long after the start the next decision is due.
    std::optional<Nanoseconds> due() {
        const auto until = policy.decide(now).until;
        return until ? std::optional(*until - World::start) : std::nullopt;
    }
};

} // namespace

TEST_F(ScanPolicyTest, WithNothingToDoItDoesNotScan) {
    EXPECT_EQ(at(0s), Scan::off);
    EXPECT_EQ(due(), std::nullopt);
}

TEST_F(ScanPolicyTest, WithEveryKeyConnectedItStops) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.want(false, {}, now);
    EXPECT_EQ(at(0s), Scan::off);
    EXPECT_EQ(due(), std::nullopt);
}

TEST_F(ScanPolicyTest, AKeyThatIsNewIsListenedForAsOneThatIsHereAndDue) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst - 1ns), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst), Scan::off);
    EXPECT_EQ(at(ScanPolicy::freshness - ScanPolicy::startUp - 2s - 1ns), Scan::off);
    EXPECT_EQ(at(ScanPolicy::longestBurst + ScanPolicy::shortestGap), Scan::on);
}

TEST_F(ScanPolicyTest, AKeyWhoseConnectionEndsIsListenedForAfterTheShortestGap) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now);
    EXPECT_EQ(at(1s), Scan::off);
    EXPECT_EQ(at(1100ms), Scan::off);
    policy.want(false, {key, other}, now);
    EXPECT_EQ(at(1s + ScanPolicy::shortestGap - 1ns), Scan::off);
    EXPECT_EQ(at(1s + ScanPolicy::shortestGap), Scan::on);
    policy.heard(key, now);
    EXPECT_EQ(at(1s + ScanPolicy::shortestGap + ScanPolicy::shortestBurst), Scan::on);
}

TEST_F(ScanPolicyTest, AnAbsentKeyIsListenedForInLongBurstsWithLongGaps) {
    policy.want(false, {key}, now);
    Nanoseconds begin{};
    while (begin < ScanPolicy::presence - ScanPolicy::nextScan) { // as if it was heard then
        EXPECT_EQ(at(begin), Scan::on);
        EXPECT_EQ(at(begin += ScanPolicy::longestBurst), Scan::off);
        begin += ScanPolicy::shortestGap;
    }
    begin += ScanPolicy::nextScan - ScanPolicy::shortestGap;
    EXPECT_EQ(at(begin - 1ns), Scan::off);
    EXPECT_EQ(at(begin), Scan::on);
    EXPECT_EQ(at(begin + ScanPolicy::longestBurst - 1ns), Scan::on);
    EXPECT_EQ(at(begin + ScanPolicy::longestBurst), Scan::off);
}

TEST_F(ScanPolicyTest, ABurstIsLongEnoughForTheSlowestKeyAndTheStartOfTheRadio) {
    EXPECT_EQ(ScanPolicy::longestBurst, ScanPolicy::slowestKey + ScanPolicy::startUp);
    // Heard at the start of one scan and at the end of the next.
    EXPECT_EQ(ScanPolicy::longestBurst + ScanPolicy::shortestGap + ScanPolicy::longestBurst,
              ScanPolicy::freshness);
}

TEST_F(ScanPolicyTest, ABurstEndsOnceEveryKeyThatIsHereWasHeard) {
    policy.want(false, {key, other}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now + 100ms);
    policy.heard(other, now + 1500ms);
    EXPECT_EQ(at(1500ms), Scan::off);
    const Nanoseconds next = 100ms + ScanPolicy::nextScan; // the older one grows old first
    EXPECT_EQ(at(next - 1ns), Scan::off);
    EXPECT_EQ(at(next), Scan::on);
    policy.heard(other, now + 10ms);
    EXPECT_EQ(at(next + ScanPolicy::shortestBurst), Scan::on); // `key` was not heard in it
    policy.heard(key, now);
    EXPECT_EQ(at(next + ScanPolicy::shortestBurst), Scan::off);
}

TEST_F(ScanPolicyTest, ABurstHasAShortestLengthSoThatTheMedianHasSamples) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now);
    EXPECT_EQ(at(ScanPolicy::shortestBurst - 1ns), Scan::on);
    EXPECT_EQ(at(ScanPolicy::shortestBurst), Scan::off);
}

TEST_F(ScanPolicyTest, AKeyMissedInItsBurstIsListenedForAgainAfterTheShortestGap) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now);
    EXPECT_EQ(at(1s), Scan::off);
    EXPECT_EQ(at(ScanPolicy::nextScan), Scan::on);
    const Nanoseconds missed = ScanPolicy::nextScan + ScanPolicy::longestBurst;
    EXPECT_EQ(at(missed), Scan::off);
    EXPECT_EQ(at(missed + ScanPolicy::shortestGap - 1ns), Scan::off);
    EXPECT_EQ(at(missed + ScanPolicy::shortestGap), Scan::on);
}

TEST_F(ScanPolicyTest, AKeyThatIsElsewhereLengthensABurstEveryTenSecondsOnly) {
    policy.want(false, {key, other}, now);
    Nanoseconds time{};
    const auto nextBurst = [&] { // `key` is heard as soon as it begins
        while (at(time) == Scan::off)
            time += 10ms;
        policy.heard(key, now);
        const Nanoseconds begin = time;
        while (at(time) == Scan::on)
            time += 10ms;
        return std::pair(begin, time - begin);
    };
    Nanoseconds searched{};
    while (time < ScanPolicy::presence)
        static_cast<void>(nextBurst());
    while (searched == Nanoseconds{0})
        if (const auto [begin, length] = nextBurst(); length == ScanPolicy::longestBurst)
            searched = begin;
    int searches = 0;
    for (int burst = 0; burst < 20; ++burst) {
        const auto [begin, length] = nextBurst();
        if (length == ScanPolicy::shortestBurst) {
            EXPECT_LT(begin - searched, ScanPolicy::searchInterval);
            continue;
        }
        EXPECT_EQ(length, ScanPolicy::longestBurst);
        EXPECT_GE(begin - searched, ScanPolicy::searchInterval);
        searched = begin;
        ++searches;
    }
    EXPECT_EQ(searches, 5);
}

TEST_F(ScanPolicyTest, WhileTheListIsOpenItScansContinuouslyAndAnewBeforeAKeyGrowsOld) {
    policy.want(true, {}, now);
    EXPECT_EQ(at(0s), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst - 1ns), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst), Scan::anew);
    EXPECT_EQ(at(ScanPolicy::longestBurst), Scan::on);
    policy.setUnfiltered(true);
    EXPECT_EQ(at(3 * ScanPolicy::longestBurst), Scan::on);
}

TEST_F(ScanPolicyTest, AListLeftOpenIsServedInBurstsAfterTwoMinutes) {
    policy.want(true, {}, now);
    policy.setUnfiltered(true);
    EXPECT_EQ(at(0s), Scan::on);
    EXPECT_EQ(due(), ScanPolicy::listLimit);
    EXPECT_EQ(at(ScanPolicy::listLimit - 1ns), Scan::on);
    EXPECT_EQ(at(ScanPolicy::listLimit), Scan::off);
    EXPECT_EQ(at(ScanPolicy::listLimit + ScanPolicy::nextScan), Scan::on);
    EXPECT_EQ(due(), ScanPolicy::listLimit + ScanPolicy::nextScan + ScanPolicy::longestBurst);
    policy.want(true, {key}, now); // still the same opening
    EXPECT_EQ(due(), ScanPolicy::listLimit + ScanPolicy::nextScan + ScanPolicy::longestBurst);
    policy.want(false, {}, now);
    policy.want(true, {}, now);
    EXPECT_EQ(due(), now + ScanPolicy::listLimit - World::start);
}

TEST_F(ScanPolicyTest, AConnectionBeingMadeHasTheRadioToItself) {
    policy.want(true, {}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.makeWay(now + 1s);
    EXPECT_EQ(at(1s), Scan::off);
    EXPECT_EQ(at(1s + ScanPolicy::nextScan - 1ns), Scan::off);
    EXPECT_EQ(at(1s + ScanPolicy::nextScan), Scan::on); // however long it takes
    policy.makeWay(now);
    EXPECT_EQ(at(4s), Scan::off);
    policy.resume();
    EXPECT_EQ(at(4s), Scan::on);
}

TEST_F(ScanPolicyTest, AConnectionWaitsUntilEveryKeyThatIsHereWasHeard) {
    for (const bool list : {false, true}) {
        policy = {};
        policy.want(list, {key, other}, World::start);
        EXPECT_EQ(at(0s), Scan::on);
        policy.heard(key, now);
        policy.makeWay(now + 500ms);
        EXPECT_EQ(at(500ms), Scan::on);
        EXPECT_EQ(at(700ms), Scan::on);
        policy.heard(other, now);
        EXPECT_EQ(at(700ms), Scan::off); // the shortest burst is for those who wait for nobody
        EXPECT_EQ(at(ScanPolicy::nextScan - 1ns), Scan::off);
        EXPECT_EQ(at(ScanPolicy::nextScan), Scan::on); // due for `key`
    }
}

TEST_F(ScanPolicyTest, AConnectionWaitsNoLongerThanTheBurstLasts) {
    for (const bool list : {false, true}) {
        policy = {};
        policy.want(list, {key, other}, World::start);
        EXPECT_EQ(at(0s), Scan::on);
        policy.heard(key, now + 100ms);
        policy.makeWay(now + 500ms);
        EXPECT_EQ(at(ScanPolicy::longestBurst - 1ns), Scan::on);
        EXPECT_EQ(at(ScanPolicy::longestBurst), Scan::off);
    }
}

TEST_F(ScanPolicyTest, AfterTheRadioWasGoneItBeginsAtOnce) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now);
    EXPECT_EQ(at(1s), Scan::off);
    policy.reset();
    EXPECT_EQ(at(1s), Scan::on);
}

TEST_F(ScanPolicyTest, ADeviceThatIsNoKeyMakesNoDifference) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    EXPECT_FALSE(policy.heard(other, now));
    EXPECT_TRUE(policy.heard(key, now));
    EXPECT_EQ(at(ScanPolicy::shortestBurst), Scan::off);
}
