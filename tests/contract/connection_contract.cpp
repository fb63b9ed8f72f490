// How a central connects: whom, when, and what it tells of it.
#include "tests/contract/radio_contract.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ConnectionContract : RadioContract {
    /// A bonded device that does not advertise, as a key.
    Uuid silentKey(DeviceSpec spec = {}) {
        spec.identity = DeviceSpec::Identity::bonded;
        const Uuid id = world->add(spec);
        start({.connect = {id}});
        return id;
    }
};

using Identity = DeviceSpec::Identity;
using Loss = RadioWorld::Loss;

} // namespace

TEST_F(ConnectionContract, AConnectionToASilentDeviceIsPendingUntilItSpeaks) {
    const Uuid id = silentKey();
    connect(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
    world->speak(id);
    EXPECT_TRUE(tells(id, {"connected"}));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connected);
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{"connected"});
}

TEST_F(ConnectionContract, AKeyThatWasNeverHeardIsConnectedWhenItAppears) {
    const Uuid id = world->add({.identity = Identity::fixed});
    start({.connect = {id}});
    connect(id);
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
    world->speak(id);
    EXPECT_TRUE(tells(id, {"connected"}));
}

TEST_F(ConnectionContract, ADeviceThatTakesNoConnectionsStaysPending) {
    const Uuid id = silentKey({.connecting = DeviceSpec::Connecting::ignores});
    connect(id);
    world->speak(id);
    EXPECT_TRUE(hears(id));
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
}

TEST_F(ConnectionContract, ABondedDeviceIsConnectedThoughItIsNoKey) {
    start();
    const Uuid id = heardDevice({.identity = Identity::bonded});
    connect(id);
    EXPECT_TRUE(tells(id, {"connected"}));
}

TEST_F(ConnectionContract, ABondedDeviceIsConnectedUnderAnyOfItsAddresses) {
    const Uuid id = world->add({.identity = Identity::rotating});
    start({.connect = {id}});
    world->speak(id);
    EXPECT_TRUE(hears(id));
    world->rotate(id);
    connect(id);
    EXPECT_TRUE(tells(id, {"connected"}));
}

TEST_F(ConnectionContract, AStrangerIsRefusedOnce) {
    start();
    const Uuid id = heardDevice({.identity = Identity::fixed});
    connect(id);
    EXPECT_TRUE(tells(id, {"failed"}));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    EXPECT_TRUE(hears(id));
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{"failed"});
}

TEST_F(ConnectionContract, ADeviceWhoseAddressChangesIsRefusedAlsoAsAKey) {
    const Uuid id = world->add({.identity = Identity::changing});
    start({.connect = {id}});
    world->speak(id);
    EXPECT_TRUE(hears(id));
    connect(id);
    EXPECT_TRUE(tells(id, {"failed"}));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{"failed"});
}

TEST_F(ConnectionContract, WhoWasRefusedMayBeAskedForAgain) {
    start();
    const Uuid id = heardDevice({.identity = Identity::fixed});
    connect(id);
    EXPECT_TRUE(tells(id, {"failed"}));
    connect(id);
    EXPECT_TRUE(tells(id, {"failed", "failed"}));
    want({.connect = {id}}); // somebody chose it as a key
    connect(id);
    EXPECT_TRUE(tells(id, {"failed", "failed", "connected"}));
}

TEST_F(ConnectionContract, AKeyThatIsOnlyHeardIsNeverConnected) {
    const Uuid id = world->add({.identity = Identity::bonded});
    start({.hear = {id}});
    world->speak(id);
    EXPECT_TRUE(world->until([&] { return told.heard(id).times >= 3; }));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    EXPECT_EQ(told.of(id), Events{});
}

TEST_F(ConnectionContract, AKeyThatNobodyAskedToConnectIsNotConnected) {
    const Uuid id = world->add({.identity = Identity::bonded});
    start({.connect = {id}});
    world->speak(id);
    EXPECT_TRUE(world->until([&] { return told.heard(id).times >= 3; }));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    EXPECT_EQ(told.of(id), Events{});
}

TEST_F(ConnectionContract, APendingConnectionThatIsCancelledGivesNothingMore) {
    const Uuid id = silentKey();
    connect(id);
    world->pass(1s);
    cancel(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    world->speak(id);
    EXPECT_TRUE(hears(id));
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
}

TEST_F(ConnectionContract, AStandingConnectionThatIsCancelledEndsAsALossWithoutReason) {
    start();
    const Uuid id = connectedDevice();
    cancel(id);
    EXPECT_TRUE(tells(id, {"connected", "lost"}));
    EXPECT_EQ(told.lossReasons, (std::vector<std::optional<std::string>>{std::nullopt}));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    EXPECT_TRUE(hears(id));
    world->pass(while_);
    EXPECT_EQ(told.of(id), (Events{"connected", "lost"}));
}

TEST_F(ConnectionContract, CancellingWhatIsNotConnectedIsNothing) {
    start();
    const Uuid id = heardDevice({.identity = Identity::bonded});
    cancel(id);
    cancel(numbered(77));
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    connect(id);
    EXPECT_TRUE(tells(id, {"connected"}));
}

TEST_F(ConnectionContract, ALossIsToldOnceAndALaterConnectionSucceeds) {
    start();
    const Uuid id = connectedDevice();
    for (const Loss loss : {Loss::timeout, Loss::byDevice}) {
        Events expected = told.of(id);
        world->dropLink(id, loss);
        expected.emplace_back("lost");
        EXPECT_TRUE(tells(id, expected));
        EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
        EXPECT_TRUE(hears(id)); // it advertises again
        world->pass(while_);
        EXPECT_EQ(told.of(id), expected);
        connect(id);
        expected.emplace_back("connected");
        EXPECT_TRUE(tells(id, expected));
    }
}

TEST_F(ConnectionContract, OneDeviceIsConnectedWhileAnotherIsAwaited) {
    const Uuid silent = world->add({.identity = Identity::bonded});
    const Uuid other = world->add({.identity = Identity::bonded});
    start({.connect = {silent, other}});
    connect(silent);
    connect(other);
    world->speak(other);
    EXPECT_TRUE(tells(other, {"connected"}));
    EXPECT_EQ(central.peripheralState(silent), PeripheralState::connecting);
    EXPECT_EQ(told.of(silent), Events{});
    world->speak(silent);
    EXPECT_TRUE(tells(silent, {"connected"}));
    world->dropLink(other, Loss::timeout);
    EXPECT_TRUE(tells(other, {"connected", "lost"}));
    EXPECT_EQ(central.peripheralState(silent), PeripheralState::connected);
    EXPECT_EQ(told.of(silent), Events{"connected"});
}

TEST_F(ConnectionContract, WithTheRadioOffAConnectionIsLostOnce) {
    start();
    const Uuid id = connectedDevice();
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    EXPECT_TRUE(tells(id, {"connected", "lost"}));
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    world->setPowered(true);
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    world->pass(while_);
    EXPECT_EQ(told.of(id), (Events{"connected", "lost"}));
    connect(id);
    EXPECT_TRUE(tells(id, {"connected", "lost", "connected"}));
}

TEST_F(ConnectionContract, APendingConnectionOutlastsTheRadiosBeingOff) {
    const Uuid id = silentKey();
    connect(id);
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    world->speak(id);
    world->pass(while_);
    EXPECT_EQ(told.of(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
    world->setPowered(true);
    EXPECT_TRUE(tells(id, {"connected"}));
}

TEST_F(ConnectionContract, AConnectionAskedForWithTheRadioOffIsMadeWhenItIsOn) {
    const Uuid id = silentKey();
    world->speak(id);
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    connect(id);
    world->setPowered(true);
    EXPECT_TRUE(tells(id, {"connected"}));
}
