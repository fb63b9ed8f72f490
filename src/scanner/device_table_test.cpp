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

TEST_F(DeviceTableTest, TooManyMakeRoomForTheNewestAndNotInPlaceOfWhatCounts) {
    constexpr auto most = static_cast<unsigned>(DeviceTable::mostDevices);
    table.addSample(numbered(1), -90, start);                       // kept
    table.addSample(numbered(2), DeviceTable::nearFrom, start);     // near
    table.addSample(numbered(3), DeviceTable::nearFrom - 1, start); // neither
    const auto isKept = [](const Uuid& id) { return id == numbered(1); };
    for (unsigned number = 4; number <= most; ++number)
        table.addSample(numbered(number), -90, start + std::chrono::milliseconds{number});
    EXPECT_FALSE(table.isTooLarge());
    EXPECT_TRUE(table.makeRoom(isKept).empty());
    table.addSample(numbered(most + 1), -90, start + 1h);
    EXPECT_TRUE(table.isTooLarge());
    const auto forgotten = table.makeRoom(isKept);
    EXPECT_EQ(table.size() + forgotten.size(), DeviceTable::mostDevices + 1);
    EXPECT_LE(table.size(), DeviceTable::mostDevices);
    EXPECT_NE(table.find(numbered(1)), nullptr);
    EXPECT_NE(table.find(numbered(2)), nullptr);
    EXPECT_EQ(table.find(numbered(3)), nullptr);
    EXPECT_EQ(table.find(numbered(4)), nullptr); // the longest unheard of the others
    EXPECT_NE(table.find(numbered(most)), nullptr);
    EXPECT_NE(table.find(numbered(most + 1)), nullptr);
}

TEST_F(DeviceTableTest, WhereAllAreNearNoneIsForgottenAndNoneLookedAtForEachOfThem) {
    const auto isKept = [](const Uuid&) { return false; };
    unsigned looks = 0;
    for (unsigned number = 1; number <= DeviceTable::mostDevices + 2000; ++number) {
        table.addSample(numbered(number), -50, start);
        if (!table.isTooLarge()) continue;
        ++looks;
        EXPECT_TRUE(table.makeRoom(isKept).empty());
    }
    EXPECT_EQ(table.size(), DeviceTable::mostDevices + 2000);
    EXPECT_LE(looks, 3U);
}
