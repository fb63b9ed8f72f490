#include "scanner/bluez/hearing.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace wegslot::bluez;
using namespace std::chrono_literals;

namespace {

using Remedy = Hearing::Remedy;

struct HearingTest : testing::Test {
    Hearing hearing;
    TimePoint now = World::start;

    /// Passes time; the remedies that come up in it.
    std::vector<Remedy> pass(Nanoseconds duration) {
        std::vector<Remedy> remedies;
        for (const TimePoint end = now + duration; now < end;) {
            now += 1s;
            if (const auto remedy = hearing.remedy(now)) remedies.push_back(*remedy);
        }
        return remedies;
    }

    void hearThree() {
        for (unsigned device = 1; device <= 3; ++device)
            hearing.heard(numbered(device), now);
    }
};

const std::vector<Remedy> all{Remedy::restartScan, Remedy::renewDiscovery, Remedy::renewConnection};
const std::vector<Remedy> none;

} // namespace

TEST_F(HearingTest, ALivelyRoomThatFallsSilentIsTreatedStepByStep) {
    hearing.listen(true, now);
    hearThree();
    EXPECT_EQ(pass(11s), none);
    EXPECT_EQ(pass(1s), std::vector{Remedy::restartScan});
    EXPECT_EQ(pass(11s), none);
    EXPECT_EQ(pass(1s), std::vector{Remedy::renewDiscovery});
    EXPECT_EQ(pass(11s), none);
    EXPECT_EQ(pass(1s), std::vector{Remedy::renewConnection});
}

TEST_F(HearingTest, ARoundThatDidNotHelpIsRepeatedEverMoreRarely) {
    hearing.listen(true, now);
    hearThree();
    EXPECT_EQ(pass(36s), all);
    EXPECT_EQ(pass(5min - 1s), none);
    EXPECT_EQ(pass(1s + 24s), all);
    EXPECT_EQ(pass(10min - 1s), none);
    EXPECT_EQ(pass(1s + 24s), all);
    EXPECT_EQ(pass(20min + 24s), all);
    EXPECT_EQ(pass(40min + 24s), all);
    EXPECT_EQ(pass(40min + 24s), all); // no rarer than this
}

TEST_F(HearingTest, ADeviceHeardEndsItAndSaysSoOnce) {
    hearing.listen(true, now);
    hearThree();
    EXPECT_EQ(pass(24s).size(), 2U);
    EXPECT_TRUE(hearing.heard(numbered(1), now));
    EXPECT_FALSE(hearing.heard(numbered(1), now));
    hearThree();
    EXPECT_EQ(pass(12s), std::vector{Remedy::restartScan}); // from the first again
}

TEST_F(HearingTest, SilenceOfOneOrTwoDevicesIsGivenAMinute) {
    hearing.listen(true, now);
    hearing.heard(numbered(1), now);
    hearing.heard(numbered(2), now);
    EXPECT_EQ(pass(59s), none);
    EXPECT_EQ(pass(1s), std::vector{Remedy::restartScan});
}

TEST_F(HearingTest, DevicesHeardLongAgoDoNotMakeARoomLively) {
    hearing.listen(true, now);
    hearing.heard(numbered(1), now);
    hearing.heard(numbered(2), now);
    EXPECT_EQ(pass(59s), none);
    now += 2s;
    hearing.heard(numbered(3), now);
    EXPECT_EQ(pass(59s), none);
}

TEST_F(HearingTest, OnlyTimeSpentListeningCounts) {
    hearThree();
    EXPECT_EQ(pass(1h), none);
    EXPECT_EQ(hearing.due(), std::nullopt);
    for (int burst = 0; burst < 5; ++burst) {
        hearing.listen(true, now);
        EXPECT_EQ(pass(2s), none);
        hearing.listen(false, now);
        EXPECT_EQ(pass(3s), none);
    }
    hearing.listen(true, now);
    EXPECT_EQ(hearing.due(), now + 2s);
    EXPECT_EQ(pass(2s), std::vector{Remedy::restartScan});
}

TEST_F(HearingTest, ARoomInWhichNobodyWasEverHeardIsTreatedToo) {
    hearing.listen(true, now);
    EXPECT_EQ(pass(59s), none);
    EXPECT_EQ(pass(1s), std::vector{Remedy::restartScan});
}
