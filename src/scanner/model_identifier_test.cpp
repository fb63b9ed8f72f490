#include "scanner/model_identifier.h"

#include "tests/support/world.h"

#include <array>

using namespace wegslot;
using namespace std::chrono_literals;
using namespace std::string_view_literals;

namespace {

struct ModelIdentifierTest : testing::Test {
    using Calls = std::vector<std::string>;

    World world;
    Scanner scanner{world.central, world.time, world.time};

    void SetUp() override {
        world.central.setState(CentralState::poweredOn);
        static_cast<void>(world.takeCalls());
        static_cast<void>(world.log.take());
    }

    void offerServices(unsigned number) {
        const std::array services{GattUuid{0x1800}, ModelIdentifier::deviceInfoService};
        world.central.services(numbered(number), services);
    }

    void offerCharacteristics(unsigned number) {
        const std::array list{GattUuid{0x2A29}, ModelIdentifier::modelCharacteristic};
        world.central.characteristics(numbered(number), ModelIdentifier::deviceInfoService, list);
    }

    void answer(unsigned number, std::optional<std::string_view> value,
                const std::optional<std::string>& name = {}) {
        world.central.value(numbered(number), ModelIdentifier::modelCharacteristic, value, name);
    }

    /// Plays the whole exchange from the connection on.
    void identify(unsigned number, std::string_view model) {
        world.central.connected(numbered(number));
        offerServices(number);
        offerCharacteristics(number);
        answer(number, model);
    }

    [[nodiscard]] std::optional<std::string> modelOf(unsigned number) {
        scanner.refreshSnapshot();
        for (const auto& device : scanner.snapshot().get())
            if (device.id == numbered(number)) return device.model;
        return std::nullopt;
    }
};

} // namespace

TEST_F(ModelIdentifierTest, ReadsTheModelNumberAndLetsGo) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 1"});
    identify(1, "iPhone14,2");
    EXPECT_EQ(world.takeCalls(), (Calls{"discoverServices 1", "discoverCharacteristics 1",
                                        "readValue 1", "cancel 1"}));
    EXPECT_EQ(modelOf(1), "iPhone14,2");
    EXPECT_TRUE(world.logged("Herkend: 00000000-0000-0000-0000-000000000001 "
                             "model=iPhone14,2 naam=-"));
    world.hearApple(1, -50);
    world.pass(1s);
    EXPECT_EQ(world.takeCalls(), Calls{}); // it has a model now
}

TEST_F(ModelIdentifierTest, BeaconsAndForeignDevicesAreNeverIdentified) {
    scanner.setIncludeOtherDevices(true);
    world.hearApple(1, -40, 0x02, "Baken");
    world.central.advertise({.id = numbered(2), .rssi = -40, .localName = "Tag"});
    scanner.setDiscoveryActive(true);
    world.pass(1s);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, ACandidateIsStrongerThanMinus70) {
    world.hearApple(1, -71);
    world.hearApple(2, -70);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{});
    // A second sample makes the median the stronger of the two: -69 is enough.
    world.hearApple(2, -69);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 2"});
}

TEST_F(ModelIdentifierTest, ACandidateWasHeardLessThanFiveSecondsAgo) {
    world.hearApple(1, -50);
    world.pass(5s);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{}); // exactly five: its sample counts still, it does not

    scanner.setDiscoveryActive(false);
    world.hearApple(1, -50);
    world.pass(5s - 1ns);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 1"});
}

TEST_F(ModelIdentifierTest, TheStrongestGoesFirstAndTheNextFollowsAfterThreeTenths) {
    world.hearApple(1, -60);
    world.hearApple(2, -55);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 2"});
    world.central.connectFailed(numbered(2));
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(299ms);
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(1ms);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 1"});
}

TEST_F(ModelIdentifierTest, OfEquallyStrongOnesTheLowestIdGoesFirst) {
    for (const unsigned number : {9U, 4U, 7U})
        world.hearApple(number, -55);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{"connect 4"});
}

TEST_F(ModelIdentifierTest, TheChainEndsWhenDiscoveryIsOffAndTheRunningOneFinishes) {
    world.hearApple(1, -60);
    world.hearApple(2, -55);
    scanner.setDiscoveryActive(true);
    scanner.setDiscoveryActive(false);
    identify(2, "iPhone14,2");
    EXPECT_EQ(modelOf(2), "iPhone14,2");
    static_cast<void>(world.takeCalls());
    world.pass(4s);
    world.hearApple(1, -60);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, GivesUpAfterEightSecondsAndNeverTriesAgain) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    static_cast<void>(world.takeCalls());
    world.pass(8s - 1ns);
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(1ns);
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 1"});
    for (int second = 0; second < 30; ++second) {
        world.hearApple(1, -50);
        world.pass(1s);
    }
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, ATimeOutOfAnEndedIdentificationIsIgnored) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.pass(4s);
    identify(1, "iPhone14,2");
    world.hearApple(2, -50);
    static_cast<void>(world.takeCalls());
    world.pass(4s); // the eight seconds of the first
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.pass(4s); // the eight of the second, which began at once
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 2"});
}

TEST_F(ModelIdentifierTest, ACallbackOfAnotherDeviceEndsNothing) {
    world.hearApple(1, -50);
    world.hearApple(2, -60);
    scanner.setDiscoveryActive(true);
    static_cast<void>(world.takeCalls());
    world.central.connectFailed(numbered(2));
    world.central.services(numbered(2), {});
    world.central.disconnected(numbered(2));
    answer(2, std::nullopt);
    world.pass(1s);
    EXPECT_EQ(world.takeCalls(), Calls{});
    world.central.connected(numbered(1));
    EXPECT_EQ(world.takeCalls(), Calls{"discoverServices 1"});
}

TEST_F(ModelIdentifierTest, AKeyKeepsItsConnection) {
    world.central.know(numbered(1));
    scanner.setWatchedIDs({numbered(1)});
    world.central.connected(numbered(1));
    world.hearApple(1, -50);
    static_cast<void>(world.takeCalls());
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{"discoverServices 1"}); // connected already
    offerServices(1);
    offerCharacteristics(1);
    answer(1, "iPhone14,2");
    EXPECT_EQ(world.takeCalls(), (Calls{"discoverCharacteristics 1", "readValue 1"}));
    EXPECT_EQ(world.central.peripheralState(numbered(1)), PeripheralState::connected);
}

TEST_F(ModelIdentifierTest, TheModelIsTrimmedAtBothEnds) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    identify(1, "iPhone14,2\n\0"sv);
    EXPECT_EQ(modelOf(1), "iPhone14,2");
}

TEST_F(ModelIdentifierTest, TheStacksNameIsTakenOverWithTheModel) {
    world.hearApple(1, -50, 0x10, "oud");
    scanner.setDiscoveryActive(true);
    world.central.connected(numbered(1));
    answer(1, "iPhone14,2", "nieuw");
    scanner.refreshSnapshot();
    EXPECT_EQ(scanner.snapshot().get().at(0).name, "nieuw");
    EXPECT_TRUE(world.logged("Herkend: 00000000-0000-0000-0000-000000000001 "
                             "model=iPhone14,2 naam=nieuw"));
}

TEST_F(ModelIdentifierTest, AnUnusableAnswerEndsItAsFailed) {
    const std::vector<std::optional<std::string_view>> answers{std::nullopt, "", " \n", "\xFF\xFE"};
    unsigned number = 0;
    for (const auto& value : answers) {
        world.hearApple(++number, -50);
        scanner.setDiscoveryActive(true);
        world.central.connected(numbered(number));
        static_cast<void>(world.takeCalls());
        answer(number, value);
        EXPECT_EQ(world.takeCalls(), Calls{"cancel " + std::to_string(number)});
        EXPECT_EQ(modelOf(number), std::nullopt);
    }
}

TEST_F(ModelIdentifierTest, AnotherCharacteristicsValueEndsItAsFailed) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.central.connected(numbered(1));
    static_cast<void>(world.takeCalls());
    world.central.value(numbered(1), GattUuid{0x2A29}, "Fabrikant");
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 1"});
}

TEST_F(ModelIdentifierTest, AMissingServiceOrCharacteristicEndsItAsFailed) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.central.connected(numbered(1));
    static_cast<void>(world.takeCalls());
    world.central.services(numbered(1), {});
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 1"});

    world.pass(300ms);
    world.hearApple(2, -50);
    world.central.connected(numbered(2));
    offerServices(2);
    static_cast<void>(world.takeCalls());
    world.central.characteristics(numbered(2), ModelIdentifier::deviceInfoService, {});
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 2"});
}

TEST_F(ModelIdentifierTest, ALossDuringTheExchangeEndsItAsFailed) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.central.connected(numbered(1));
    world.central.disconnected(numbered(1));
    static_cast<void>(world.takeCalls());
    world.pass(1s);
    world.hearApple(1, -50);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, NothingStartsWhileTheRadioIsOff) {
    world.hearApple(1, -50);
    world.central.setState(CentralState::poweredOff);
    scanner.setDiscoveryActive(true);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, ADeviceForgottenDuringIdentificationIsStillLetGo) {
    world.hearApple(1, -50);
    world.pass(4s);
    scanner.setDiscoveryActive(true);
    world.pass(1s);
    world.time.sleep(116s); // the machine slept: its last sample is 121 s old, its time-out is not
    scanner.refreshSnapshot();
    EXPECT_TRUE(scanner.snapshot().get().empty());
    static_cast<void>(world.takeCalls());
    world.pass(7s);
    EXPECT_EQ(world.takeCalls(), Calls{"cancel 1"});
}

TEST_F(ModelIdentifierTest, AFailureMovesWithTheIdentity) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.central.connectFailed(numbered(1));
    world.central.identify(numbered(1), numbered(2));
    static_cast<void>(world.takeCalls());
    world.pass(1s);
    world.hearApple(2, -50);
    EXPECT_EQ(world.takeCalls(), Calls{});
}

TEST_F(ModelIdentifierTest, ARunningIdentificationMovesWithTheIdentity) {
    world.hearApple(1, -50);
    scanner.setDiscoveryActive(true);
    world.central.identify(numbered(1), numbered(2));
    world.central.connected(numbered(2));
    offerServices(2);
    offerCharacteristics(2);
    answer(2, "iPhone14,2");
    EXPECT_EQ(modelOf(2), "iPhone14,2");
}
