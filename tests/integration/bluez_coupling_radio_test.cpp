// How this computer appears at a bluetoothd that a test plays, and what is left of it: nothing.

#include "scanner/bluez/bluez_central.h"
#include "scanner/scanner.h"
#include "tests/integration/coupling_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

const std::string rejected = "org.bluez.Error.Rejected";

struct CouplingRadioTest : CouplingWorld {
    void cannotAppear(Obstacle obstacle, const std::string& why = {}) {
        radio->appear("Wegslot 4F2A", Confirmation::code);
        ASSERT_TRUE(isTold("gone"));
        EXPECT_EQ(take(), (Events{"cannotAppear", "gone"}));
        ASSERT_EQ(diary.troubles.size(), 1U);
        EXPECT_EQ(diary.troubles.back(), (coupling::Trouble{obstacle, why}));
        diary.troubles.clear();
        loop.settle();
        expectNothingLeft();
    }
    /// It has seen what there is.
    void looked() {
        ASSERT_TRUE(loop.runUntil([&] { return bluez.calls("GetManagedObjects") >= 1; }));
        loop.settle();
        loop.settle();
    }
    /// An agent of another program, the default until somebody else is.
    struct Desktop {
        explicit Desktop(BusLoop& loop) : bus(loop.connect()), driven(loop.attach(*bus)) {
            for (const char* const member : {"RegisterAgent", "RequestDefaultAgent"}) {
                std::vector<dbus::Argument> arguments{dbus::ObjectPath{"/desktop"}};
                if (member == std::string("RegisterAgent"))
                    arguments.emplace_back(std::string("DisplayYesNo"));
                bus->send({.destination = "org.bluez",
                           .path = "/org/bluez",
                           .interface = "org.bluez.AgentManager1",
                           .member = member,
                           .arguments = arguments});
            }
            loop.settle();
        }
        std::unique_ptr<dbus::Bus> bus;
        Handle driven;
    };
};

} // namespace

TEST_F(CouplingRadioTest, AppearsAsAHeartRateMonitorUnderItsName) {
    bluez.addAdapter();
    appearing();
    ASSERT_EQ(bluez.advertised.size(), 1U);
    EXPECT_EQ(bluez.advertised.begin()->second,
              (VisitedBluez::Texts{{"Type", "peripheral"},
                                   {"ServiceUUIDs", "0000180d-0000-1000-8000-00805f9b34fb"},
                                   {"Discoverable", "true"},
                                   {"LocalName", "Wegslot 4F2A"},
                                   {"Appearance", "832"},
                                   {"Timeout", "150"}}));
    const std::string service = "/nl/wegslot/coupling/application/service";
    EXPECT_EQ(bluez.applications.begin()->second,
              (std::set<std::string>{"org.bluez.GattService1 " + service +
                                         " Primary=true UUID=0000180d-0000-1000-8000-00805f9b34fb",
                                     "org.bluez.GattCharacteristic1 " + service +
                                         "/measurement Flags=notify Service=" + service +
                                         " UUID=00002a37-0000-1000-8000-00805f9b34fb",
                                     "org.bluez.GattCharacteristic1 " + service +
                                         "/location Flags=encrypt-read Service=" + service +
                                         " UUID=00002a38-0000-1000-8000-00805f9b34fb"}));
    ASSERT_EQ(bluez.agents.size(), 1U);
    EXPECT_EQ(bluez.agents[0].capability, "DisplayYesNo");
    EXPECT_TRUE(bluez.isPairable());
}

TEST_F(CouplingRadioTest, ItIsOnTheAirLastWhenEverythingElseIsThere) {
    bluez.addAdapter();
    appearing();
    const auto& calls = bluez.bluez.service.calls();
    const auto first = std::ranges::find(calls, "RegisterAgent");
    EXPECT_EQ(std::vector<std::string>(first, calls.end()),
              (std::vector<std::string>{"RegisterAgent", "RequestDefaultAgent", "Set",
                                        "RegisterApplication", "RegisterAdvertisement"}));
}

TEST_F(CouplingRadioTest, WhatHasNoScreenMeetsAnAgentWithoutOne) {
    bluez.addAdapter();
    appearing(Confirmation::without);
    ASSERT_EQ(bluez.agents.size(), 1U);
    EXPECT_EQ(bluez.agents[0].capability, "NoInputNoOutput");
}

TEST_F(CouplingRadioTest, WhatItShowsCanBeUsedByBluetoothd) {
    bluez.addAdapter();
    appearing();
    const std::string service = "/nl/wegslot/coupling/application/service";
    const std::string interface = "org.bluez.GattCharacteristic1";
    const auto started = bluez.call(service + "/measurement", interface, "StartNotify");
    const auto stopped = bluez.call(service + "/measurement", interface, "StopNotify");
    const auto read =
        bluez.call(service + "/location", interface, "ReadValue", {dbus::Dictionary{}});
    loop.settle();
    EXPECT_EQ(*started, "ok");
    EXPECT_EQ(*stopped, "ok");
    EXPECT_EQ(*read, "ok");
}

TEST_F(CouplingRadioTest, AnObstacleIsToldAndNothingIsTried) {
    cannotAppear(Obstacle::noRadio);
    bluez.addAdapter();
    bluez.bluez.setPowered(false);
    cannotAppear(Obstacle::off);
    bluez.bluez.setPowered(true);
    bluez.bluez.changeAdapter({{"Discoverable", true}});
    cannotAppear(Obstacle::discoverable);
    bluez.bluez.changeAdapter({{"Discoverable", false}});
    bluez.bluez.changeAdapter({{"Roles", std::vector<std::string>{"central"}}});
    cannotAppear(Obstacle::noPeripheral);
    bluez.bluez.changeAdapter({{"Roles", std::vector<std::string>{"central", "peripheral"}}});
    constexpr auto manager = "org.bluez.LEAdvertisingManager1";
    bluez.bluez.changeObject(path, manager, {{"SupportedInstances", std::int16_t{0}}});
    cannotAppear(Obstacle::noRoom);
    bluez.bluez.removeObject(path, manager);
    cannotAppear(Obstacle::noPeripheral);
    bluez.bluez.objectsError = "org.freedesktop.DBus.Error.AccessDenied";
    cannotAppear(Obstacle::denied);
    EXPECT_EQ(bluez.calls("RegisterAgent"), 0);
    EXPECT_EQ(bluez.calls("Set"), 0);
}

TEST_F(CouplingRadioTest, WithoutADaemonOrABusThereIsNoRadio) {
    bluez.vanish();
    cannotAppear(Obstacle::noRadio);
    loop.daemon.stop();
    radio->appear("Wegslot 4F2A", Confirmation::code);
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(diary.events, (Events{"cannotAppear", "gone"}));
    EXPECT_EQ(diary.troubles.back(), coupling::Trouble{Obstacle::noRadio});
    EXPECT_FALSE(isLent);
}

TEST_F(CouplingRadioTest, ADaemonThatDoesNotAnswerIsNoneAfterTenSeconds) {
    bluez.addAdapter();
    bluez.bluez.service.on("org.freedesktop.DBus.ObjectManager.GetManagedObjects",
                           [](LookAlike&, sd_bus_message*) {});
    radio->appear("Wegslot 4F2A", Confirmation::code);
    loop.pass(10s - 1ns);
    EXPECT_EQ(take(), Events{});
    loop.pass(1ns);
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(diary.troubles, std::vector{coupling::Trouble{Obstacle::noRadio}});
}

TEST_F(CouplingRadioTest, WhateverIsRefusedAllIsPutBack) {
    bluez.addAdapter();
    for (const char* const member : {"RegisterAgent", "RequestDefaultAgent", "Set",
                                     "RegisterApplication", "RegisterAdvertisement"}) {
        bluez.errors = {{member, "org.bluez.Error.Failed"}};
        radio->appear("Wegslot 4F2A", Confirmation::code);
        ASSERT_TRUE(isTold("gone")) << member;
        EXPECT_EQ(take(), (Events{"cannotAppear", "gone"})) << member;
        EXPECT_EQ(diary.troubles.back(),
                  (coupling::Trouble{Obstacle::failed, "org.bluez.Error.Failed: as told"}));
        bluez.errors.clear();
        loop.settle();
        loop.settle(); // what could not be put back is tried again
        loop.settle();
        expectNothingLeft();
        EXPECT_FALSE(bluez.isPairable()) << member;
    }
    diary.troubles.clear();
    bluez.errors = {{"RegisterAdvertisement", "org.bluez.Error.NotPermitted"}};
    cannotAppear(Obstacle::noRoom);
}

TEST_F(CouplingRadioTest, WhereNothingCanBeNotedNothingIsChanged) {
    data.write("wegslot", "a file in the folder's place");
    bluez.addAdapter();
    cannotAppear(Obstacle::failed, "Not a directory");
    EXPECT_EQ(bluez.calls("RegisterAgent"), 0);
}

TEST_F(CouplingRadioTest, ItWaitsUntilTheScanHasEnded) {
    bluez.addAdapter();
    bluez.bluez.changeAdapter({{"Discovering", true}});
    radio->appear("Wegslot 4F2A", Confirmation::code);
    looked();
    EXPECT_EQ(bluez.calls("RegisterAgent"), 0);
    bluez.bluez.changeAdapter({{"Discovering", false}});
    EXPECT_TRUE(isTold("appears"));
}

TEST_F(CouplingRadioTest, BorrowedFromTheCentralItAppearsAfterTheScanAndTheScanGoesOnAfterwards) {
    dbus::Connection systemBus(loop.opener(), loop.attacher(), loop.time);
    AddressResolver nobody;
    BluezCentral central(systemBus, loop.time, loop.time, links, nobody);
    Scanner scanner(central, loop.time, loop.time);
    scanner.setDiscoveryActive(true);
    bluez.addAdapter();
    ASSERT_TRUE(loop.runUntil([&] { return bluez.bluez.isDiscovering(); }));
    radio.emplace(
        loop.opener(), loop.attacher(), loop.time, links, [&] { return central.lend(); }, file);
    radio->setListener(&diary);
    appearing();
    const auto& calls = bluez.bluez.service.calls();
    EXPECT_LT(std::ranges::find(calls, "StopDiscovery"), std::ranges::find(calls, "RegisterAgent"));
    EXPECT_FALSE(bluez.bluez.isDiscovering());
    EXPECT_EQ(scanner.stateDescription(), "Bluetooth koppelt een toestel");
    gone();
    EXPECT_TRUE(loop.runUntil([&] { return bluez.bluez.isDiscovering(); }));
    EXPECT_TRUE(scanner.isPoweredOn());
    radio.reset(); // before whom it borrows from
}

TEST_F(CouplingRadioTest, AScanOfAnotherProgramIsNotWaitedForLongerThanThreeSeconds) {
    bluez.addAdapter();
    bluez.bluez.changeAdapter({{"Discovering", true}});
    radio->appear("Wegslot 4F2A", Confirmation::code);
    looked();
    loop.pass(3s - 1ns);
    bluez.bluez.changeAdapter({{"Alias", std::string("x")}}); // is no end of it
    loop.settle();
    EXPECT_EQ(bluez.calls("RegisterAgent"), 0);
    loop.pass(1ns);
    EXPECT_TRUE(isTold("appears"));
}

TEST_F(CouplingRadioTest, TheRadioIsBorrowedUntilEverythingIsPutBack) {
    bluez.addAdapter();
    radio->appear("Wegslot 4F2A", Confirmation::code);
    EXPECT_TRUE(isLent);
    ASSERT_TRUE(isTold("appears"));
    bool lentAtTheEnd = true;
    diary.then = [&](const std::string& event) { lentAtTheEnd = event != "gone" || isLent; };
    radio->disappear();
    EXPECT_TRUE(isLent);
    ASSERT_TRUE(isTold("gone"));
    EXPECT_FALSE(lentAtTheEnd);
    EXPECT_EQ(loans, 1);
}

TEST_F(CouplingRadioTest, NothingIsLeftOfItAfterwards) {
    bluez.addAdapter();
    appearing();
    EXPECT_EQ(note.adapters(), std::set<std::string>{VisitedBluez::adapterAddress});
    gone();
    EXPECT_EQ(take(), Events{"gone"});
    for (const char* const member :
         {"UnregisterAdvertisement", "UnregisterApplication", "UnregisterAgent"})
        EXPECT_EQ(bluez.calls(member), 1) << member;
    EXPECT_EQ(bluez.bluez.service.calls().back(), "Set"); // the agent's going changes it too
    expectNothingLeft();
    EXPECT_FALSE(bluez.isPairable());
    loop.settle();
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CouplingRadioTest, AnotherProgramsAgentIsTheDefaultAgainAndMayBeAskedAsBefore) {
    bluez.addAdapter();
    const Desktop desktop(loop);
    appearing();
    ASSERT_EQ(bluez.agents.size(), 2U);
    EXPECT_EQ(bluez.agents.back().path, "/nl/wegslot/coupling/agent");
    EXPECT_FALSE(std::filesystem::exists(file)); // others could bond before
    gone();
    ASSERT_EQ(bluez.agents.size(), 1U);
    EXPECT_EQ(bluez.agents.back().path, "/desktop");
    EXPECT_TRUE(bluez.isPairable());
}

TEST_F(CouplingRadioTest, WhereOthersCouldNotBondTheyCannotAfterwardsThoughAnAgentIsLeft) {
    bluez.addAdapter();
    const Desktop desktop(loop);
    bluez.bluez.changeAdapter({{"Pairable", false}});
    appearing();
    EXPECT_TRUE(bluez.isPairable());
    gone();
    EXPECT_FALSE(bluez.isPairable());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(CouplingRadioTest, WhereOthersCouldBondWithoutAnyAgentTheyCanAfterwards) {
    bluez.addAdapter(true);
    appearing();
    gone();
    EXPECT_TRUE(bluez.isPairable());
}

TEST_F(CouplingRadioTest, ItMayAppearAgain) {
    bluez.addAdapter();
    appearing();
    radio->appear("Een ander", Confirmation::without); // there is one
    gone();
    EXPECT_EQ(take(), Events{"gone"});
    appearing(Confirmation::without);
    EXPECT_EQ(loans, 2);
}

TEST_F(CouplingRadioTest, WhoIsNotThereIsGoneButNotWithinTheCall) {
    radio->disappear();
    EXPECT_TRUE(diary.events.empty());
    ASSERT_TRUE(isTold("gone"));
    radio->appear("Wegslot 4F2A", Confirmation::code);
    radio->disappear(); // before there was a bus
    radio->disappear();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), (Events{"gone", "gone"}));
    EXPECT_FALSE(isLent);
}

TEST_F(CouplingRadioTest, WhoSwitchesItOffOrUnplugsItOrShowsItToAllEndsIt) {
    bluez.addAdapter();
    appearing();
    bluez.bluez.setPowered(false);
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), (Events{"cannotAppear", "gone"}));
    bluez.bluez.setPowered(true);
    appearing();
    bluez.bluez.changeObject(path, "org.bluez.LEAdvertisingManager1",
                             {{"SupportedInstances", std::int16_t{0}}}); // by us
    EXPECT_EQ(take(), Events{});
    bluez.bluez.changeAdapter({{"Discoverable", true}});
    ASSERT_TRUE(isTold("gone"));
    bluez.bluez.changeAdapter({{"Discoverable", false}});
    static_cast<void>(take());
    expectNothingLeft();
    appearing();
    bluez.bluez.removeAdapter();
    ASSERT_TRUE(isTold("gone"));
    using Troubles = std::vector<coupling::Trouble>;
    EXPECT_EQ(diary.troubles,
              (Troubles{{Obstacle::off}, {Obstacle::discoverable}, {Obstacle::noRadio}}));
}

TEST_F(CouplingRadioTest, WhatIsTakenOffTheAirAppearsNoMoreUnlessSomebodyCame) {
    bluez.addAdapter();
    appearing();
    const std::string advertisement = "/nl/wegslot/coupling/advertisement";
    visited();
    const auto released = bluez.call(advertisement, "org.bluez.LEAdvertisement1", "Release");
    loop.settle();
    EXPECT_EQ(*released, "ok");
    EXPECT_EQ(take(), Events{});
    goes();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), (Events{"left", "cannotAppear", "gone"}));
    EXPECT_EQ(diary.troubles, (std::vector{coupling::Trouble{Obstacle::failed, "Release"}}));
}

TEST_F(CouplingRadioTest, ADaemonThatIsKilledEndsItAndTheNextOneIsPutRight) {
    bluez.addAdapter();
    appearing();
    visited();
    const auto code = confirm(123456);
    bluez.vanish();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(take(), (Events{"code 123456", "cannotAppear", "gone"}));
    EXPECT_EQ(diary.troubles, std::vector{coupling::Trouble{Obstacle::noRadio}});
    EXPECT_FALSE(isLent);
    EXPECT_TRUE(std::filesystem::exists(file));
    bluez.appear();
    bluez.addAdapter(true); // as it had kept it
    ASSERT_TRUE(loop.runUntil([&] { return !std::filesystem::exists(file); }));
    EXPECT_FALSE(bluez.isPairable());
    loop.settle();
    expectNothingLeft();
}

TEST_F(CouplingRadioTest, ADaemonThatIsReplacedWithinOneTurnIsNotTheOneThatKnowsUs) {
    bluez.addAdapter();
    appearing();
    bluez.vanish();
    bluez.appear();
    bluez.addAdapter();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(diary.events, (Events{"cannotAppear", "gone"}));
}

TEST_F(CouplingRadioTest, ABusThatEndsEndsIt) {
    bluez.addAdapter();
    appearing();
    visited();
    bluez.vanish();
    loop.daemon.stop();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(diary.events, (Events{"cannotAppear", "gone"}));
    EXPECT_FALSE(isLent);
}

TEST_F(CouplingRadioTest, WhatKilledProgramsLeftBehindIsPutBackAtTheNextStart) {
    ASSERT_EQ(note.add(VisitedBluez::adapterAddress), 0);
    radio->putBack();
    loop.settle();
    EXPECT_TRUE(std::filesystem::exists(file)); // until its adapter is there
    bluez.addAdapter(true);
    ASSERT_TRUE(loop.runUntil([&] { return !std::filesystem::exists(file); }));
    EXPECT_FALSE(bluez.isPairable());
    EXPECT_EQ(log.messages,
              std::vector<std::string>{"Koppelbaarheid van 00:11:22:33:44:55 teruggezet"});
}

TEST_F(CouplingRadioTest, WhatIsAsItWasIsOnlyCrossedOut) {
    ASSERT_EQ(note.add(VisitedBluez::adapterAddress), 0);
    bluez.addAdapter(false);
    radio->putBack();
    ASSERT_TRUE(loop.runUntil([&] { return !std::filesystem::exists(file); }));
    EXPECT_EQ(bluez.calls("Set"), 0);
}

TEST_F(CouplingRadioTest, AnAdapterThatStaysAwayIsWaitedForTenMinutesAndOthersAreLeftAlone) {
    ASSERT_EQ(note.add("00:11:22:33:44:66"), 0);
    bluez.addAdapter(true);
    radio->putBack();
    looked();
    EXPECT_TRUE(bluez.isPairable());
    const auto asked = bluez.calls("GetManagedObjects");
    loop.pass(10min);
    loop.settle();
    bluez.vanish();
    bluez.appear();
    loop.settle();
    EXPECT_EQ(bluez.calls("GetManagedObjects"), asked);
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(CouplingRadioTest, WhatWasLeftBehindIsPutBackByTheNextCouplingToo) {
    ASSERT_EQ(note.add(VisitedBluez::adapterAddress), 0);
    bluez.addAdapter();
    const Desktop desktop(loop); // which keeps it as the killed program left it
    ASSERT_TRUE(bluez.isPairable());
    appearing();
    gone();
    EXPECT_FALSE(bluez.isPairable());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(CouplingRadioTest, AProgramThatEndsInTheMiddlePutsBackWhatItCanAndNotesTheRest) {
    bluez.addAdapter();
    const Desktop desktop(loop);
    bluez.bluez.changeAdapter({{"Pairable", false}});
    appearing();
    radio.reset();
    ASSERT_TRUE(loop.runUntil([&] { return bluez.agents.size() == 1 && !bluez.isPairable(); }));
    EXPECT_TRUE(bluez.advertised.empty());
    EXPECT_FALSE(isLent);
    EXPECT_EQ(note.adapters(), std::set<std::string>{VisitedBluez::adapterAddress});
}
