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

TEST_F(ScanPolicyTest, AnAbsentKeyIsListenedForInLongBurstsWithLongGaps) {
    policy.want(false, {key}, now);
    EXPECT_EQ(at(0s), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst - 1ns), Scan::on);
    EXPECT_EQ(at(ScanPolicy::longestBurst), Scan::off);
    EXPECT_EQ(at(ScanPolicy::longestBurst + ScanPolicy::nextScan - 1ns), Scan::off);
    EXPECT_EQ(at(ScanPolicy::longestBurst + ScanPolicy::nextScan), Scan::on);
}

TEST_F(ScanPolicyTest, ABurstEndsOnceEveryKeyThatIsHereWasHeard) {
    policy.want(false, {key, other}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(key, now + 100ms);
    policy.heard(other, now + 1500ms);
    EXPECT_EQ(at(1500ms), Scan::off);
    EXPECT_EQ(at(2699ms), Scan::off);
    EXPECT_EQ(at(2700ms), Scan::on); // the older one grows old first
    policy.heard(other, now + 10ms);
    EXPECT_EQ(at(2700ms + ScanPolicy::shortestBurst), Scan::on); // `key` was not heard in it
    policy.heard(key, now);
    EXPECT_EQ(at(2700ms + ScanPolicy::shortestBurst), Scan::off);
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

TEST_F(ScanPolicyTest, AKeyThatIsElsewhereDoesNotLengthenTheBursts) {
    policy.want(false, {key, other}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(other, now);
    for (Nanoseconds time = 100ms; time < ScanPolicy::presence; time += 100ms) {
        static_cast<void>(at(time));
        policy.heard(key, now);
    }
    int scanning = 0;
    for (Nanoseconds time = ScanPolicy::presence; time < ScanPolicy::presence + 36s;
         time += 100ms) {
        scanning += at(time) == Scan::on ? 1 : 0;
        if (scanning > 0 && at(time) == Scan::on) policy.heard(key, now);
    }
    EXPECT_EQ(scanning, 100); // one second of each 3.6
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
    policy.want(true, {key}, now);
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

TEST_F(ScanPolicyTest, InBurstsAConnectionBeingMadeKeepsNoKeyWaiting) {
    policy.want(false, {key, other}, now);
    EXPECT_EQ(at(0s), Scan::on);
    policy.heard(other, now);
    policy.makeWay(now + 2s);
    EXPECT_EQ(at(2s), Scan::off);
    EXPECT_EQ(at(ScanPolicy::nextScan - 1ns), Scan::off);
    EXPECT_EQ(at(ScanPolicy::nextScan), Scan::on);
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
