#include "scanner/device_table.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

std::vector<Uuid> idsOf(const std::vector<SeenDevice>& snapshot) {
    std::vector<Uuid> ids;
    ids.reserve(snapshot.size());
    for (const SeenDevice& device : snapshot)
        ids.push_back(device.id);
    return ids;
}

struct DeviceTableTest : testing::Test {
    const TimePoint start = World::start;
    DeviceTable table;
};

} // namespace

TEST_F(DeviceTableTest, TheFirstSampleMakesABareRecord) {
    EXPECT_EQ(table.addSample(numbered(1), -60, start),
              (SeenDevice{.id = numbered(1), .lastSeen = start}));
}

TEST_F(DeviceTableTest, AnUnknownDeviceHasNothing) {
    EXPECT_EQ(table.find(numbered(1)), nullptr);
    EXPECT_EQ(table.smoothedRSSI(numbered(1), 5s, start), std::nullopt);
}

TEST_F(DeviceTableTest, TheStrongestComesFirstAndTheSilentLast) {
    table.addSample(numbered(1), -40, start);
    table.addSample(numbered(2), -90, start + 4s);
    table.addSample(numbered(3), -60, start + 4s);
    const auto snapshot = table.snapshot(start + 6s);
    EXPECT_EQ(idsOf(snapshot), (std::vector{numbered(3), numbered(2), numbered(1)}));
    EXPECT_EQ(snapshot[0].rssi, Dbm{-60});
    EXPECT_EQ(snapshot[2].rssi, std::nullopt);
    EXPECT_EQ(snapshot[2].lastSeen, start);
}

TEST_F(DeviceTableTest, EquallyStrongOnesKeepTheOrderOfTheirIds) {
    for (const unsigned number : {7U, 3U, 9U, 1U, 5U})
        table.addSample(numbered(number), -60, start);
    const std::vector expected{numbered(1), numbered(3), numbered(5), numbered(7), numbered(9)};
    EXPECT_EQ(idsOf(table.snapshot(start)), expected);
    EXPECT_EQ(idsOf(table.snapshot(start + 6s)), expected); // all equally silent
}

TEST_F(DeviceTableTest, ADeviceIsForgottenAfterMoreThanTwoMinutes) {
    table.addSample(numbered(1), -60, start);
    EXPECT_TRUE(table.forgetStale({}, start + 119s).empty());
    EXPECT_TRUE(table.forgetStale({}, start + 120s).empty());
    EXPECT_EQ(table.forgetStale({}, start + 120s + 1ns), std::vector{numbered(1)});
    EXPECT_EQ(table.find(numbered(1)), nullptr);
    EXPECT_EQ(table.smoothedRSSI(numbered(1), 1000s, start + 121s), std::nullopt);
}

TEST_F(DeviceTableTest, AWatchedDeviceIsNeverForgotten) {
    table.addSample(numbered(1), -60, start);
    EXPECT_TRUE(table.forgetStale({numbered(1)}, start + 1000h).empty());
    EXPECT_NE(table.find(numbered(1)), nullptr);
}

TEST_F(DeviceTableTest, ADeviceThatTurnsOutToBeAnotherMovesThere) {
    table.addSample(numbered(1), -60, start).name = "Telefoon";
    table.move(numbered(1), numbered(2));
    EXPECT_EQ(table.find(numbered(1)), nullptr);
    EXPECT_EQ(table.snapshot(start),
              (std::vector{SeenDevice{
                  .id = numbered(2), .lastSeen = start, .rssi = Dbm{-60}, .name = "Telefoon"}}));
}

TEST_F(DeviceTableTest, WhatTheOtherHasAlreadyWinsAndSamplesMerge) {
    auto& from = table.addSample(numbered(1), -60, start);
    from.name = "oud";
    from.model = "iPhone14,2";
    from.isHeld = true;
    table.addSample(numbered(1), -62, start + 2s);
    table.addSample(numbered(2), -80, start + 1s).name = "nieuw";
    table.move(numbered(1), numbered(2));
    const auto snapshot = table.snapshot(start + 2s);
    ASSERT_EQ(snapshot.size(), 1U);
    EXPECT_EQ(snapshot[0].name, "nieuw");
    EXPECT_EQ(snapshot[0].model, "iPhone14,2");
    EXPECT_EQ(snapshot[0].rssi, Dbm{-62}); // of -60, -80 and -62
    EXPECT_EQ(snapshot[0].lastSeen, start + 2s);
    EXPECT_TRUE(table.addSample(numbered(2), -60, start + 2s).isHeld);
}

TEST_F(DeviceTableTest, MovingToItselfOrFromNowhereChangesNothing) {
    table.addSample(numbered(1), -60, start);
    table.move(numbered(1), numbered(1));
    table.move(numbered(5), numbered(6));
    EXPECT_EQ(idsOf(table.snapshot(start)), std::vector{numbered(1)});
}
