#include "scanner/key_connections.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

// Through the scanner, which conducts them: what a key's connection does is what it calls.
struct KeyConnectionsTest : testing::Test {
    using Calls = std::vector<std::string>;

    World world;
    Scanner scanner{world.central, world.time, world.time};

    void powerOn() { world.central.setState(CentralState::poweredOn); }

    /// A connected key 1, its calls so far forgotten.
    void connectKey() {
        powerOn();
        world.central.know(numbered(1));
        scanner.setWatchedIDs({numbered(1)});
        world.central.connected(numbered(1));
        static_cast<void>(world.takeCalls());
        static_cast<void>(world.log.take());
    }
};

} // namespace

TEST_F(KeyConnectionsTest, AnEqualSetTouchesNoConnection) {
    powerOn();
    world.central.know(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "connect 1"}));
    world.central.connectFailed(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    scanner.setPassiveIDs({});
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(KeyConnectionsTest, AKeyAddedWhileTheRadioIsOffIsConnectedWhenItComesOn) {
    world.central.know(numbered(1));
    world.central.setState(CentralState::poweredOff);
    scanner.setWatchedIDs({numbered(1)});
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Calls{});
    powerOn();
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "connect 1"}));
}

TEST_F(KeyConnectionsTest, KeysAreConnectedInOrderOfTheirIds) {
    powerOn();
    for (const unsigned number : {3U, 1U, 2U})
        world.central.know(numbered(number));
    scanner.setWatchedIDs({numbered(3), numbered(1), numbered(2)});
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "connect 1", "connect 2", "connect 3"}));
}

TEST_F(KeyConnectionsTest, AKeyThatTheStackDoesNotKnowIsNotConnected) {
    powerOn();
    scanner.setWatchedIDs({numbered(1)});
    EXPECT_EQ(world.takeCalls(), Calls{"scan"});
}

TEST_F(KeyConnectionsTest, AListenOnlyKeyIsNeverConnected) {
    powerOn();
    world.central.know(numbered(1));
    scanner.setPassiveIDs({numbered(1)});
    scanner.setWatchedIDs({numbered(1)});
    world.hear(1, -50);
    powerOn();
    world.pass(60s);
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "scan"}));
}

TEST_F(KeyConnectionsTest, AKeyThatBecomesListenOnlyIsDisconnected) {
    connectKey();
    scanner.setPassiveIDs({numbered(1)});
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 1"});
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(KeyConnectionsTest, APendingConnectionOfARemovedKeyIsGivenUp) {
    powerOn();
    world.central.know(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    scanner.setWatchedIDs({});
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "connect 1", "cancel 1"}));
}

TEST_F(KeyConnectionsTest, AConnectedKeyIsLoggedAndReadAtOnce) {
    powerOn();
    world.central.know(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    static_cast<void>(world.log.take());
    static_cast<void>(world.takeCalls());
    world.central.connected(numbered(1));
    EXPECT_EQ(world.log.take(), Calls{"Verbonden met sleutel ? (00000000)"});
    EXPECT_EQ(world.takeCalls(), Calls{"readRSSI 1"});
}

TEST_F(KeyConnectionsTest, ItsSignalIsReadEveryTwoSeconds) {
    connectKey();
    world.pass(1999ms);
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(1ms);
    EXPECT_EQ(world.takeCalls(), Calls{"readRSSI 1"});
    world.pass(4s);
    EXPECT_EQ(world.takeCalls(), (Calls{"readRSSI 1", "readRSSI 1"}));
}

TEST_F(KeyConnectionsTest, AReadSignalIsASampleUnlessItIsNotMeasured) {
    connectKey();
    for (const std::optional<int> rssi :
         {std::optional<int>{}, std::optional{127}, std::optional{0}, std::optional{-127}})
        world.central.rssiRead(numbered(1), rssi);
    EXPECT_EQ(scanner.lastSeen(numbered(1)), std::nullopt);
    world.central.rssiRead(numbered(1), -126);
    EXPECT_EQ(scanner.smoothedRSSI(numbered(1)), Dbm{-126});
}

TEST_F(KeyConnectionsTest, ALossIsLoggedWithItsReason) {
    const Uuid id = *Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6");
    scanner.setWatchedIDs({id});
    world.central.advertise({.id = id, .rssi = -80, .localName = "Telefoon"});
    world.central.disconnected(id, "time-out");
    world.central.disconnected(id);
    EXPECT_EQ(world.log.take(),
              (Calls{"Verbinding met sleutel Telefoon (0F2C41A7) verbroken: time-out",
                     "Verbinding met sleutel Telefoon (0F2C41A7) verbroken"}));
}

TEST_F(KeyConnectionsTest, ALostKeyIsConnectedAgainAfterTwoSeconds) {
    connectKey();
    world.pass(1s); // out of step with the poll
    world.central.disconnected(numbered(1));
    world.pass(1999ms);
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(1ms);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 1"});
}

TEST_F(KeyConnectionsTest, ARefusedConnectionIsTriedAgainForEverAndNotLogged) {
    powerOn();
    world.central.know(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    static_cast<void>(world.log.take());
    static_cast<void>(world.takeCalls());
    for (int attempt = 0; attempt < 100; ++attempt) {
        world.central.connectFailed(numbered(1));
        world.pass(2s);
        EXPECT_EQ(world.takeCalls(), Calls{"connect 1"});
    }
    EXPECT_TRUE(world.log.messages.empty());
}

TEST_F(KeyConnectionsTest, AKeyRemovedWithinTwoSecondsOfItsLossIsNotConnectedAgain) {
    connectKey();
    world.central.disconnected(numbered(1));
    world.pass(1s);
    scanner.setWatchedIDs({});
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(KeyConnectionsTest, NothingIsConnectedAgainWhileTheRadioIsOff) {
    connectKey();
    world.central.disconnected(numbered(1));
    world.central.setState(CentralState::poweredOff);
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(KeyConnectionsTest, ASignalIsOfTheLinkWhileTheLinkStandsAndTellsIt) {
    connectKey();
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
    world.central.rssiRead(numbered(1), -50);
    EXPECT_TRUE(scanner.hearsOverConnection(numbered(1)));
    world.hear(1, -60); // it may go on advertising
    EXPECT_TRUE(scanner.hearsOverConnection(numbered(1)));
    world.central.rssiRead(numbered(1), std::nullopt);
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
    world.central.rssiRead(numbered(1), 127);
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
}

TEST_F(KeyConnectionsTest, ALinkThatComesBackTellsNothingUntilItIsRead) {
    connectKey();
    world.central.rssiRead(numbered(1), -50);
    world.central.disconnected(numbered(1));
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
    world.central.connected(numbered(1));
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
    world.central.rssiRead(numbered(1), -50);
    scanner.setWatchedIDs({}); // ends the link without a word
    EXPECT_FALSE(scanner.hearsOverConnection(numbered(1)));
}

TEST_F(KeyConnectionsTest, TheDeviceUnderIdentificationKeepsItsConnection) {
    powerOn();
    world.hearApple(2, -50);
    scanner.setDiscoveryActive(true);
    world.central.connected(numbered(2));
    scanner.setWatchedIDs({numbered(1)});
    EXPECT_EQ(world.takeCalls(), (Calls{"scan", "connect 2", "discoverServices 2"}));
    EXPECT_EQ(world.central.peripheralState(numbered(2)), PeripheralState::connected);
}

TEST_F(KeyConnectionsTest, NothingIsCalledAfterTheScannerHasGone) {
    {
        Scanner other{world.central, world.time, world.time};
        powerOn();
        world.central.know(numbered(1));
        other.setWatchedIDs({numbered(1)});
        world.central.connected(numbered(1));
        world.central.disconnected(numbered(1));
    }
    static_cast<void>(world.takeCalls());
    const auto own = world.time.pending();
    EXPECT_EQ(own, 1U); // the poll of the fixture's own scanner
    world.central.connected(numbered(1));
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Calls{});
}
