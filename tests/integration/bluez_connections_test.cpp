// How BluezCentral connects: whom, when, over which bearer, and whose links it leaves alone.

#include "tests/integration/bluez_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct BluezConnectionsTest : BluezWorld {};

} // namespace

TEST_F(BluezConnectionsTest, ABondedDeviceIsConnectedWhenItIsHeardWithTheScanOutOfTheWay) {
    start();
    central->connect(id);
    live(10s);
    EXPECT_EQ(calls("Connect"), 0);
    EXPECT_EQ(central->peripheralState(id), PeripheralState::connecting);
    untilListening();
    const auto stops = calls("StopDiscovery");
    hear();
    EXPECT_TRUE(isCalled("Connect", 1));
    EXPECT_EQ(calls("StopDiscovery"), stops + 1);
    EXPECT_EQ(take(), Events{});
    linkComes();
    answerConnect();
    EXPECT_EQ(take(), Events{"connected"});
    EXPECT_EQ(central->peripheralState(id), PeripheralState::connected);
    hear();
    live(10s);
    EXPECT_EQ(calls("Connect"), 1);
}

TEST_F(BluezConnectionsTest, WithEveryKeyConnectedNothingIsScannedFor) {
    start();
    connected();
    central->readRSSI(id);
    loop.settle();
    const auto starts = calls("StartDiscovery");
    live(10s);
    EXPECT_EQ(calls("StartDiscovery"), starts);
    linkGoes();
    EXPECT_TRUE(isCalled("StartDiscovery", starts + 1));
}

TEST_F(BluezConnectionsTest, AConnectionWhoseStrengthCannotBeReadIsListenedForBeside) {
    start();
    connected();
    links.strengths[address] = std::nullopt; // a controller that has no measurement
    central->readRSSI(id);
    live(10s);
    const auto starts = calls("StartDiscovery");
    EXPECT_GT(starts, 2);
    links.strengths[address] = -50;
    central->readRSSI(id);
    live(10s);
    EXPECT_LE(calls("StartDiscovery"), starts + 1);
}

TEST_F(BluezConnectionsTest, AKeyThatBlueZDoesNotKnowYetIsConnectedWhenItAppears) {
    central->want({.connect = {id}});
    ASSERT_TRUE(loop.runUntil([&] { return calls("StartDiscovery") >= 1; }));
    EXPECT_EQ(central->retrieve({id}), std::vector{id});
    central->connect(id);
    loop.pass(1h);
    EXPECT_EQ(take(), Events{});
    bluez.addDevice(address, -60, {{"Paired", true}});
    loop.settle();
    linkComes();
    answerConnect();
    EXPECT_EQ(take(), Events{"connected"});
}

TEST_F(BluezConnectionsTest, AStrangerIsRefusedAndAFixedKeyIsNot) {
    start({});
    central->want({.list = true});
    central->connect(id);
    hear();
    EXPECT_EQ(take(), Events{"failed"});
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnected);
    central->want({.connect = {id}});
    central->connect(id);
    hear();
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(calls("Connect"), 1);
}

TEST_F(BluezConnectionsTest, AnAddressThatChangesIsRefusedEvenAsAKey) {
    const std::string changing = "4A:BB:CC:DD:EE:01";
    const Uuid stranger = deviceId(changing, "random");
    start();
    bluez.addDevice(changing, -50, {{"AddressType", std::string("random")}});
    loop.settle();
    EXPECT_TRUE(central->changesAddress(stranger));
    EXPECT_FALSE(central->changesAddress(id));
    central->want({.connect = {stranger}});
    central->connect(stranger);
    loop.settle();
    EXPECT_EQ(take(), Events{"failed"});
    EXPECT_EQ(calls("Connect"), 0);
}

TEST_F(BluezConnectionsTest, APhoneWithMusicIsNeverAskedButItsOwnLinkIsUsed) {
    start({{"Paired", true}, {"UUIDs", std::vector<std::string>{audioSource}}});
    central->connect(id);
    for (int report = 0; report < 20; ++report) {
        hear();
        loop.pass(1s);
    }
    EXPECT_EQ(calls("Connect"), 0);
    change({{"Connected", true}}); // the music's bearer
    loop.pass(30s);
    EXPECT_EQ(take(), Events{});
    links.strengths[address] = -48; // the phone opens the other one too
    loop.pass(5s);
    EXPECT_EQ(take(), Events{"connected"});
    central->readRSSI(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"rssi -48"});
    links.strengths.erase(address); // and closes it, while the music goes on
    loop.pass(5s);
    EXPECT_EQ(take(), Events{"lost"});
}

TEST_F(BluezConnectionsTest, WhereBluezTellsBearersApartTheLowEnergyOneIsAsked) {
    bluez.service.on("org.bluez.Bearer.LE1.Connect", [this](LookAlike&, sd_bus_message* call) {
        connects.push_back(sd_bus_message_ref(call));
    });
    start(
        {{"Paired", true}, {"Connected", true}, {"UUIDs", std::vector<std::string>{audioSource}}});
    const auto bearer = [this](bool linked) {
        bluez.service.signal(LookAlikeBluez::pathOf(address), "org.freedesktop.DBus.Properties",
                             "PropertiesChanged", [linked](sd_bus_message* message) {
                                 sd_bus_message_append(message, "sa{sv}as", "org.bluez.Bearer.LE1",
                                                       1, "Connected", "b", linked ? 1 : 0, 0);
                             });
        loop.settle();
    };
    bearer(false);
    central->connect(id);
    hear();
    EXPECT_EQ(calls("Connect"), 1);
    bearer(true);
    answerConnect();
    EXPECT_EQ(take(), Events{"connected"});
    bearer(false); // the music's bearer stays
    EXPECT_EQ(take(), Events{"lost"});
}

TEST_F(BluezConnectionsTest, ALinkOfSomebodyElseIsUsedAndNeverClosed) {
    start({{"Paired", true}, {"Connected", true}});
    links.strengths[address] = -50;
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnected); // not asked for
    central->connect(id);
    EXPECT_EQ(take(), Events{}); // never from within
    loop.settle();
    EXPECT_EQ(take(), Events{"connected"});
    central->cancelConnection(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"});
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnected);
    delegate.reset();
    central.reset();
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 0);
}

TEST_F(BluezConnectionsTest, ALinkOfOursIsClosedWhenItIsNotWantedAnyMore) {
    start();
    connected();
    central->cancelConnection(id);
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnecting);
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
    linkGoes();
    EXPECT_EQ(take(), Events{"lost"});
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnected);
}

TEST_F(BluezConnectionsTest, AskedForWhileItClosesItIsConnectedAfterwards) {
    start();
    connected();
    central->cancelConnection(id);
    central->connect(id);
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnecting);
    linkGoes();
    EXPECT_EQ(take(), Events{"lost"});
    hear();
    linkComes();
    answerConnect();
    EXPECT_EQ(take(), Events{"connected"});
}

TEST_F(BluezConnectionsTest, AnotherAdapterTakesOverAndOurLinkOnTheFormerIsClosed) {
    bluez.addAdapter("/org/bluez/hci1");
    bluez.removeAdapter();
    bluez.addDevice(address, {}, {{"Paired", true}}, "/org/bluez/hci1");
    central->want({.connect = {id}});
    ASSERT_TRUE(isCalled("StartDiscovery", 1));
    central->connect(id);
    bluez.report(address, -60, {}, "/org/bluez/hci1");
    loop.settle();
    links.strengths[address] = -55;
    bluez.changeDevice(address, {{"Connected", true}}, "/org/bluez/hci1");
    answerConnect();
    ASSERT_EQ(take(), Events{"connected"});
    bluez.addAdapter(); // comes first by its path
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"});
    EXPECT_EQ(calls("Disconnect"), 1);
}

TEST_F(BluezConnectionsTest, ALinkThatSomebodyElseOpensFirstIsNotOurs) {
    start();
    // Another key, not heard yet, keeps the scan going, and the connection waiting.
    central->want({.connect = {id}, .hear = {deviceId("AA:BB:CC:DD:EE:02", "public")}});
    central->connect(id);
    untilListening();
    hear();
    linkComes();
    EXPECT_EQ(calls("Connect"), 0);
    EXPECT_EQ(take(), Events{});
    live(3s); // the scan has ended
    EXPECT_EQ(calls("Connect"), 0);
    EXPECT_EQ(take(), Events{"connected"});
    central->cancelConnection(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"});
    EXPECT_EQ(calls("Disconnect"), 0);
}

TEST_F(BluezConnectionsTest, AnAttemptUnderWayIsGivenUpAtTheEnd) {
    start();
    central->connect(id);
    hear();
    ASSERT_TRUE(isCalled("Connect", 1));
    delegate.reset();
    central.reset();
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
}

TEST_F(BluezConnectionsTest, WhoWaitsForTheRadioGetsItWhenAnotherAttemptEnds) {
    const std::string other = "AA:BB:CC:DD:EE:02";
    const Uuid second = deviceId(other, "public");
    start();
    bluez.addDevice(other, {}, {{"Paired", true}});
    central->want({.list = true, .connect = {id}, .hear = {}});
    central->connect(id);
    central->connect(second);
    hear();
    ASSERT_TRUE(isCalled("Connect", 1));
    live(1s);
    untilListening(); // beside the attempt, which takes long
    bluez.report(other, -60);
    loop.settle();
    EXPECT_EQ(calls("Connect"), 1); // the key has not been heard in this scan
    answerConnect("org.bluez.Error.Failed");
    EXPECT_EQ(take(), Events{"failed"});
    live(3s);
    EXPECT_EQ(calls("Connect"), 2);
}

TEST_F(BluezConnectionsTest, ALinkOfOursIsClosedAtTheEnd) {
    start();
    connected();
    delegate.reset();
    central.reset();
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
}

TEST_F(BluezConnectionsTest, AnAttemptThatIsCancelledIsGivenUp) {
    start();
    central->connect(id);
    hear();
    central->cancelConnection(id);
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
    EXPECT_EQ(central->peripheralState(id), PeripheralState::disconnected);
    answerConnect("org.bluez.Error.Failed");
    EXPECT_EQ(take(), Events{});
    central->connect(id); // waiting only: nothing to give up
    loop.settle();
    central->cancelConnection(id);
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
}

TEST_F(BluezConnectionsTest, AnErrorIsNotBelievedWhileThereIsALink) {
    start();
    central->connect(id);
    hear();
    property = true; // as the daemon knows, and has not told yet
    answerConnect("org.bluez.Error.Failed");
    EXPECT_EQ(take(), Events{"connected"});
    central->cancelConnection(id); // who opened it is not known
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 0);
}

TEST_F(BluezConnectionsTest, AnAnswerWithoutALinkIsAFailure) {
    start();
    central->connect(id);
    hear();
    answerConnect();
    EXPECT_EQ(take(), Events{"failed"});
}

TEST_F(BluezConnectionsTest, ADeviceThatFailsIsTriedEverMoreRarely) {
    start();
    std::vector<int> attempts;
    for (int second = 0; second < 60; ++second) {
        central->connect(id); // as the core does after each failure
        hear();
        if (!connects.empty()) {
            attempts.push_back(second);
            answerConnect("org.bluez.Error.Failed");
        }
        loop.pass(1s);
    }
    EXPECT_EQ(attempts, (std::vector{0, 2, 6, 14, 29, 44, 59}));
    EXPECT_EQ(take(), Events(attempts.size(), "failed"));
}

TEST_F(BluezConnectionsTest, ALossIsToldOnceWithBluezsReason) {
    start();
    connected();
    bluez.service.signal(LookAlikeBluez::pathOf(address), "org.bluez.Device1", "Disconnected",
                         [](sd_bus_message* message) {
                             sd_bus_message_append(message, "ss", "org.bluez.Reason.Remote",
                                                   "Connection terminated\nby remote user");
                         });
    linkGoes();
    change({{"Connected", false}});
    EXPECT_EQ(take(), Events{"lost: door het apparaat beëindigd"});
}

TEST_F(BluezConnectionsTest, WhereBluezGivesNoReasonTheControllersIsTold) {
    start();
    connected();
    links.lossCodes[address] = 0x08;
    linkGoes();
    EXPECT_EQ(take(), Events{"lost: geen antwoord meer"});
}

TEST_F(BluezConnectionsTest, ADeviceThatIsRemovedWhileConnectedIsLost) {
    start();
    connected();
    bluez.removeDevice(address);
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"});
}

TEST_F(BluezConnectionsTest, PowerOffLosesTheLinkAndPowerOnBringsItBack) {
    start();
    connected();
    linkGoes();
    bluez.setPowered(false);
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"});
    central->connect(id); // stays for when the radio is back
    bluez.setPowered(true);
    loop.settle();
    hear();
    linkComes();
    answerConnect();
    EXPECT_EQ(take(), Events{"connected"});
}

TEST_F(BluezConnectionsTest, WhereLinksCannotBeReadKeysAreOnlyHeard) {
    links.permitted = false;
    start();
    central->connect(id);
    for (int report = 0; report < 10; ++report) {
        hear();
        loop.pass(1s);
    }
    EXPECT_EQ(calls("Connect"), 0);
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(log.messages,
              Events{"Signaal van verbindingen niet te lezen: sleutels worden alleen beluisterd"});
}

TEST_F(BluezConnectionsTest, AStrengthIsReadOverTheLinkOnly) {
    start();
    central->readRSSI(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"rssi -"});
    connected();
    central->readRSSI(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"rssi -55"});
    links.strengths[address] = std::nullopt;
    central->readRSSI(id);
    loop.settle();
    EXPECT_EQ(take(), Events{"rssi -"});
}

TEST_F(BluezConnectionsTest, AModelIsReadOnceTheServicesAreKnown) {
    const std::string service = LookAlikeBluez::pathOf(address) + "/service0010";
    const std::string characteristic = service + "/char0011";
    const auto add = [this](const std::string& path, const char* interface, const char* uuid) {
        bluez.service.signal("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded",
                             [=](sd_bus_message* message) {
                                 sd_bus_message_append(message, "oa{sa{sv}}", path.c_str(), 1,
                                                       interface, 1, "UUID", "s", uuid);
                             });
        loop.settle();
    };
    std::string asked;
    bluez.service.on("org.bluez.GattCharacteristic1.ReadValue",
                     [&asked](LookAlike& daemon, sd_bus_message* call) {
                         asked = sd_bus_message_get_path(call);
                         daemon.reply(call, [](sd_bus_message* message) {
                             sd_bus_message_append_array(message, 'y', "iPhone14,2", 10);
                         });
                     });
    start();
    connected();
    central->discoverServices(id, GattUuid{0x180A});
    loop.pass(30s);
    EXPECT_EQ(take(), Events{}); // a device that does not answer is waited for
    change({{"ServicesResolved", true}});
    EXPECT_EQ(take(), Events{});
    add(service, "org.bluez.GattService1", "0000180a-0000-1000-8000-00805f9b34fb"); // late
    EXPECT_EQ(take(), Events{"services 1"});
    central->discoverCharacteristics(id, GattUuid{0x180A}, GattUuid{0x2A24});
    add(characteristic, "org.bluez.GattCharacteristic1", "00002a24-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(take(), Events{"characteristics 1"});
    central->readValue(id, GattUuid{0x2A24});
    loop.settle();
    EXPECT_EQ(take(), Events{"value iPhone14,2"});
    EXPECT_EQ(asked, characteristic);
    central->readValue(id, GattUuid{0x2A29});
    loop.settle();
    EXPECT_EQ(take(), Events{"value -"});
    central->discoverServices(id, GattUuid{0x180F});
    loop.pass(1s);
    EXPECT_EQ(take(), Events{"services 0"});
}
