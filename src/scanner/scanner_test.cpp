#include "scanner/scanner.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ScannerTest : testing::Test {
    World world;
    Scanner scanner{world.central, world.time, world.time};

    [[nodiscard]] std::size_t listed() {
        scanner.refreshSnapshot();
        return scanner.snapshot().get().size();
    }

    [[nodiscard]] SeenDevice only() {
        scanner.refreshSnapshot();
        EXPECT_EQ(scanner.snapshot().get().size(), 1U);
        return scanner.snapshot().get().at(0);
    }

    void hearNamed(unsigned number, int rssi, std::string_view name) {
        world.central.advertise({.id = numbered(number), .rssi = rssi, .localName = name});
    }
};

} // namespace

TEST_F(ScannerTest, AnAdvertisementWithoutAMeasuredStrengthIsDropped) {
    for (const int rssi : {127, 0, -127})
        world.hearApple(1, rssi);
    EXPECT_EQ(listed(), 0U);
    world.hearApple(1, -126);
    EXPECT_EQ(listed(), 1U);
}

TEST_F(ScannerTest, AForeignDeviceCountsOnlyWhenWatchedOrNamedAndWanted) {
    world.hear(1, -60);
    hearNamed(2, -60, "Tag");
    EXPECT_EQ(listed(), 0U);

    scanner.setIncludeOtherDevices(true);
    world.hear(1, -60);
    EXPECT_EQ(listed(), 0U);
    hearNamed(2, -60, "Tag");
    EXPECT_EQ(listed(), 1U);

    scanner.setIncludeOtherDevices(false);
    scanner.setWatchedIDs({numbered(1)});
    world.hear(1, -60);
    EXPECT_EQ(listed(), 2U);
}

TEST_F(ScannerTest, TypeTwoIsTreatedAsForeign) {
    world.hearApple(1, -60, 0x02);
    EXPECT_EQ(listed(), 0U);
    scanner.setIncludeOtherDevices(true);
    world.hearApple(1, -60, 0x02);
    EXPECT_EQ(listed(), 0U); // still without a name
    world.hearApple(1, -60, 0x02, "Baken");
    EXPECT_EQ(only().displayName(), "Baken");
}

TEST_F(ScannerTest, EarphonesAndTrackersAreIgnoredUnlessWatched) {
    for (const std::uint8_t type : {std::uint8_t{0x07}, std::uint8_t{0x12}}) {
        world.hearApple(type, -60, type);
        EXPECT_EQ(listed(), 0U);
    }
    scanner.setPassiveIDs({numbered(0x07), numbered(0x12)});
    scanner.setWatchedIDs({numbered(0x07), numbered(0x12)});
    for (const std::uint8_t type : {std::uint8_t{0x07}, std::uint8_t{0x12}})
        world.hearApple(type, -60, type);
    EXPECT_EQ(listed(), 2U);
}

TEST_F(ScannerTest, AbsentValuesNeverEraseStoredOnes) {
    scanner.setWatchedIDs({numbered(1)});
    world.hearApple(1, -60, 0x10, "Telefoon");
    world.central.advertise({.id = numbered(1), .rssi = -61, .peripheralName = ""});
    const auto device = only();
    EXPECT_EQ(device.name, "Telefoon");
    EXPECT_EQ(device.continuityType, 0x10);
    world.hearApple(1, -60, 0x0C);
    EXPECT_EQ(only().continuityType, 0x0C); // a new one overwrites
}

TEST_F(ScannerTest, ADroppedAdvertisementChangesNothing) {
    world.hearApple(1, -60, 0x10, "Telefoon");
    const auto before = only();
    world.pass(1s);
    world.hearApple(1, 127, 0x0C, "Anders");
    EXPECT_EQ(only(), before);
}

TEST_F(ScannerTest, AFirstSightingIsLoggedOnceFromMinus69On) {
    world.hearApple(1, -75);
    world.hearApple(1, -70);
    EXPECT_TRUE(world.log.messages.empty());
    world.hearApple(1, -69, 0x10, "Telefoon");
    world.hearApple(1, -40);
    EXPECT_EQ(world.log.messages,
              std::vector<std::string>{"Gezien: 00000000-0000-0000-0000-000000000001 "
                                       "naam=Telefoon type=0x10 rssi=-69"});
}

TEST_F(ScannerTest, AFirstSightingNamesWhatIsStoredByThen) {
    world.hearApple(1, -75, 0x0F, "Telefoon");
    scanner.setWatchedIDs({numbered(1), numbered(2)});
    world.central.advertise({.id = numbered(1), .rssi = -60});
    world.hear(2, -60);
    EXPECT_EQ(world.log.messages,
              (std::vector<std::string>{
                  "Gezien: 00000000-0000-0000-0000-000000000001 naam=Telefoon type=0x0F rssi=-60",
                  "Gezien: 00000000-0000-0000-0000-000000000002 naam=- type=- rssi=-60"}));
}

TEST_F(ScannerTest, AForgottenDeviceThatReturnsIsNotLoggedAgain) {
    world.hearApple(1, -60);
    world.pass(121s);
    EXPECT_EQ(listed(), 0U);
    world.hearApple(1, -60);
    EXPECT_EQ(listed(), 1U);
    EXPECT_EQ(world.log.messages.size(), 1U);
}

TEST_F(ScannerTest, AnUnknownDeviceWasNeverSeen) {
    EXPECT_EQ(scanner.lastSeen(numbered(1)), std::nullopt);
    EXPECT_EQ(scanner.smoothedRSSI(numbered(1)), std::nullopt);
}

TEST_F(ScannerTest, ASilentDeviceIsListedWithoutSignalAndWithItsLastSample) {
    world.hearApple(1, -60);
    world.pass(6s);
    EXPECT_EQ(only().rssi, std::nullopt);
    EXPECT_EQ(scanner.smoothedRSSI(numbered(1)), std::nullopt);
    EXPECT_EQ(scanner.lastSeen(numbered(1)), World::start);
    EXPECT_EQ(scanner.smoothedRSSI(numbered(1), Seconds{6.0}), Dbm{-60});
}

TEST_F(ScannerTest, AWatchedKeySilentForAnHourStaysAtTheEnd) {
    scanner.setPassiveIDs({numbered(1)});
    scanner.setWatchedIDs({numbered(1)});
    world.hear(1, -40);
    world.pass(1h);
    world.hearApple(2, -90);
    scanner.refreshSnapshot();
    const auto& snapshot = scanner.snapshot().get();
    ASSERT_EQ(snapshot.size(), 2U);
    EXPECT_EQ(snapshot[1].id, numbered(1));
    EXPECT_EQ(snapshot[1].rssi, std::nullopt);
}

TEST_F(ScannerTest, EachRefreshNotifiesOnceAlsoWhenNothingChanged) {
    int notified = 0;
    const auto subscription = scanner.snapshot().onChange([&](const auto&) { ++notified; });
    scanner.refreshSnapshot();
    scanner.refreshSnapshot();
    EXPECT_EQ(notified, 2);
}

TEST_F(ScannerTest, EachStateHasItsTextAndNumberInTheLog) {
    const std::vector<std::pair<CentralState, std::string>> states{
        {CentralState::unknown, "Bluetooth wordt gestart (0)"},
        {CentralState::resetting, "Bluetooth wordt gestart (1)"},
        {CentralState::unsupported, "Bluetooth LE wordt niet ondersteund (2)"},
        {CentralState::unauthorized, "Geef Wegslot Bluetooth-toegang in Systeeminstellingen (3)"},
        {CentralState::poweredOff, "Bluetooth staat uit (4)"},
        {CentralState::poweredOn, "Bluetooth staat aan (5)"}};
    for (const auto& [state, text] : states) {
        world.central.setState(state);
        EXPECT_EQ(world.log.take(), std::vector{"Bluetooth-status: " + text});
    }
}

TEST_F(ScannerTest, ARefusedUserReadsSoWhateverTheState) {
    constexpr auto text = "Geef Wegslot Bluetooth-toegang in Systeeminstellingen";
    for (const auto authorization :
         {CentralAuthorization::restricted, CentralAuthorization::denied}) {
        world.central.setState(CentralState::poweredOn, authorization);
        EXPECT_EQ(scanner.stateDescription(), text);
    }
    for (const auto authorization :
         {CentralAuthorization::notDetermined, CentralAuthorization::allowedAlways}) {
        world.central.setState(CentralState::poweredOn, authorization);
        EXPECT_EQ(scanner.stateDescription(), "Bluetooth staat aan");
    }
}

TEST_F(ScannerTest, ScansAtEachReportOfAPoweredOnRadio) {
    world.central.setState(CentralState::poweredOff);
    EXPECT_TRUE(world.takeCalls().empty());
    world.central.setState(CentralState::poweredOn);
    world.central.setState(CentralState::poweredOn);
    EXPECT_EQ(world.takeCalls(), (std::vector<std::string>{"scan", "scan"}));
}

TEST_F(ScannerTest, ALabelIsTheNameAndTheStartOfTheId) {
    const Uuid id = *Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6");
    EXPECT_EQ(scanner.label(id), "? (0F2C41A7)");
    scanner.setWatchedIDs({id});
    world.central.advertise({.id = id, .rssi = -60, .localName = "Telefoon"});
    EXPECT_EQ(scanner.label(id), "Telefoon (0F2C41A7)");
}

TEST_F(ScannerTest, ADeviceThatGetsAnIdentityIsListedAndLoggedOnce) {
    world.hearApple(1, -60, 0x10, "Telefoon");
    world.central.identify(numbered(1), numbered(2));
    world.hearApple(2, -62);
    const auto device = only();
    EXPECT_EQ(device.id, numbered(2));
    EXPECT_EQ(device.name, "Telefoon");
    EXPECT_EQ(world.log.messages.size(), 1U);
}

TEST_F(ScannerTest, WhatIsWantedOfTheRadioFollowsTheKeysAndTheList) {
    EXPECT_EQ(world.central.wanted(), Wanted{});
    scanner.setPassiveIDs({numbered(2), numbered(3)});
    scanner.setWatchedIDs({numbered(1), numbered(2)});
    const Wanted keys{.list = false, .connect = {numbered(1)}, .hear = {numbered(2)}};
    EXPECT_EQ(world.central.wanted(), keys);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.central.wanted(), (Wanted{true, {numbered(1)}, {numbered(2)}}));
    scanner.setDiscoveryActive(false);
    EXPECT_EQ(world.central.wanted(), keys);
}

TEST_F(ScannerTest, AKeyIsWantedBeforeItIsConnected) {
    world.central.setState(CentralState::poweredOn);
    world.central.know(numbered(1));
    std::set<Uuid> wantedAtConnect;
    world.central.onCall([&](std::string_view operation, const Uuid*) {
        if (operation == "connect") wantedAtConnect = world.central.wanted().connect;
    });
    scanner.setWatchedIDs({numbered(1)});
    EXPECT_EQ(wantedAtConnect, std::set{numbered(1)});
}

TEST_F(ScannerTest, NoDeviceCanForgeALogLine) {
    const std::string forged = "Tag\n2026-11-21 Hervat\r\x1B[2K\u2028";
    const std::string visible = "Tag\uFFFD2026-11-21 Hervat\uFFFD\uFFFD[2K\uFFFD";
    scanner.setWatchedIDs({numbered(1)});
    hearNamed(1, -50, forged);
    world.central.connected(numbered(1));
    world.central.disconnected(numbered(1), forged);
    world.central.value(numbered(1), ModelIdentifier::modelCharacteristic, "Model\nX", forged);
    const std::string id = numbered(1).text();
    EXPECT_EQ(world.log.messages,
              (std::vector<std::string>{"Gezien: " + id + " naam=" + visible + " type=- rssi=-50",
                                        "Verbonden met sleutel " + visible + " (00000000)",
                                        "Verbinding met sleutel " + visible +
                                            " (00000000) verbroken: " + visible,
                                        "Herkend: " + id + " model=Model\uFFFDX naam=" + visible}));
    EXPECT_EQ(only().name, forged); // the record keeps what the device said
}

TEST_F(ScannerTest, AFloodOfAddressesIsHeldUpToABoundAndDrivesNoKeyOut) {
    scanner.setWatchedIDs({numbered(1)});
    world.hear(1, -95);
    for (unsigned number = 2; number < 100'000; ++number)
        world.hearApple(number, -80);
    EXPECT_LE(listed(), DeviceTable::mostDevices);
    EXPECT_TRUE(scanner.lastSeen(numbered(1)));
}
