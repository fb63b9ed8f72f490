#include "coupling/bluez/obstacle.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::coupling;

namespace {

const bluez::Adapter able{.powered = true, .advertisingRoom = 1};

std::optional<Obstacle> withRoom(std::optional<int> room) {
    bluez::Adapter adapter = able;
    adapter.advertisingRoom = room;
    return obstacle(adapter);
}

} // namespace

TEST(CouplingObstacle, AnAdapterThatIsOnAndHasRoomHasNone) {
    EXPECT_EQ(obstacle(able), std::nullopt);
}

TEST(CouplingObstacle, OneThatIsOffSaysNothingElse) {
    EXPECT_EQ(obstacle(bluez::Adapter{.powered = false, .isPeripheral = false}), Obstacle::off);
}

TEST(CouplingObstacle, OneThatCannotBeAPeripheralOrAdvertiseIsNone) {
    bluez::Adapter adapter = able;
    adapter.isPeripheral = false;
    EXPECT_EQ(obstacle(adapter), Obstacle::noPeripheral);
    EXPECT_EQ(withRoom(std::nullopt), Obstacle::noPeripheral);
}

TEST(CouplingObstacle, WithoutRoomForOneMoreItCannotAppear) {
    EXPECT_EQ(withRoom(-1), Obstacle::noRoom);
    EXPECT_EQ(withRoom(0), Obstacle::noRoom);
    EXPECT_EQ(withRoom(1), std::nullopt);
}

TEST(CouplingObstacle, ADiscoverableComputerIsPairedWithByItsOtherHalf) {
    bluez::Adapter adapter = able;
    adapter.discoverable = true;
    EXPECT_EQ(obstacle(adapter), Obstacle::discoverable);
}

TEST(CouplingObstacle, WithoutADaemonOrAnAdapterThereIsNoRadio) {
    using bluez::Daemon;
    using bluez::Surroundings;
    EXPECT_EQ(obstacle(Surroundings{.daemon = Daemon::ready, .adapter = able}), std::nullopt);
    EXPECT_EQ(obstacle(Surroundings{.daemon = Daemon::ready}), Obstacle::noRadio);
    for (const Daemon daemon : {Daemon::unknown, Daemon::absent, Daemon::loading})
        EXPECT_EQ(obstacle(Surroundings{.daemon = daemon, .adapter = able}), Obstacle::noRadio);
    EXPECT_EQ(obstacle(Surroundings{.daemon = Daemon::denied, .adapter = able}), Obstacle::denied);
}
