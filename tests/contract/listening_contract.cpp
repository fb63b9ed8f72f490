// What a central tells of its radio and of what it hears.
#include "tests/contract/radio_contract.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ListeningContract : RadioContract {};

using Identity = DeviceSpec::Identity;

} // namespace

TEST_F(ListeningContract, TheStateIsToldBeforeAnythingElse) {
    const Uuid id = world->add({});
    world->speak(id);
    start();
    EXPECT_TRUE(hears(id));
    EXPECT_FALSE(told.somethingBeforeState);
    EXPECT_EQ(central.state(), CentralState::poweredOn);
    EXPECT_EQ(central.authorization(), CentralAuthorization::allowedAlways);
}

TEST_F(ListeningContract, NothingIsHeardBeforeAScanIsAskedFor) {
    told.scans = false;
    const Uuid id = world->add({});
    world->speak(id);
    start();
    world->pass(while_);
    EXPECT_EQ(told.heard(id).times, 0);
    quietly([&] { central.scan(); });
    EXPECT_TRUE(hears(id));
}

TEST_F(ListeningContract, AnAdvertisementCarriesStrengthNameAndMakersData) {
    start();
    const Uuid id =
        heardDevice({.name = "Sleutelhanger", .makerData = {0x4C, 0x00, 0x10, 0x05}, .rssi = -63});
    EXPECT_TRUE(world->until([&] { return told.heard(id).name == "Sleutelhanger"; }));
    EXPECT_EQ(told.heard(id).rssi, -63);
    EXPECT_EQ(told.heard(id).makerData, (std::vector<std::uint8_t>{0x4C, 0x00, 0x10, 0x05}));
    EXPECT_EQ(central.peripheralName(id), "Sleutelhanger");
    EXPECT_EQ(central.peripheralName(numbered(77)), std::nullopt);
}

TEST_F(ListeningContract, ADeviceIsHeardAgainAndAgainAlsoWithNothingNewToSay) {
    start();
    const Uuid id = heardDevice({});
    EXPECT_TRUE(world->until([&] { return told.heard(id).times >= 4; }));
}

TEST_F(ListeningContract, AKeyIsHeardAgainAndAgainWithTheListClosed) {
    const Uuid id = world->add({});
    start({.hear = {id}});
    world->speak(id);
    EXPECT_TRUE(world->until([&] { return told.heard(id).times >= 4; }));
}

TEST_F(ListeningContract, ADeviceThatFallsSilentIsHeardNoMoreUntilItSpeaks) {
    start();
    const Uuid id = heardDevice({});
    world->silence(id);
    world->pass(1s);
    const int before = told.heard(id).times;
    world->pass(while_);
    EXPECT_EQ(told.heard(id).times, before);
    world->speak(id);
    EXPECT_TRUE(hears(id));
}

TEST_F(ListeningContract, AllThatWereAskedForAreRetrievedHeardOrNot) {
    start();
    const Uuid heard = heardDevice({});
    std::set<Uuid> ids{heard, numbered(1), numbered(0x1234)};
    std::vector<Uuid> retrieved;
    quietly([&] { retrieved = central.retrieve(ids); });
    EXPECT_EQ(retrieved, (std::vector<Uuid>{ids.begin(), ids.end()}));
    EXPECT_EQ(central.peripheralState(numbered(1)), PeripheralState::disconnected);
}

TEST_F(ListeningContract, OnlyAnAddressThatNothingResolvesChanges) {
    start();
    const Uuid changing = heardDevice({.identity = Identity::changing});
    const Uuid fixed = heardDevice({.identity = Identity::fixed});
    const Uuid rotating = heardDevice({.identity = Identity::rotating});
    EXPECT_TRUE(central.changesAddress(changing));
    EXPECT_FALSE(central.changesAddress(fixed));
    EXPECT_FALSE(central.changesAddress(rotating));
    EXPECT_FALSE(central.changesAddress(numbered(77)));
}

TEST_F(ListeningContract, ABondedDeviceKeepsItsIdWhenItsAddressChanges) {
    const Uuid id = world->add({.identity = Identity::rotating}); // bonded before anybody listens
    start();
    world->speak(id);
    EXPECT_TRUE(hears(id));
    world->rotate(id);
    EXPECT_TRUE(hears(id));
    EXPECT_TRUE(told.identities.empty());
}

TEST_F(ListeningContract, AnIdentityIsToldOnceAndWhatFollowsIsTheIdentitys) {
    start();
    const Uuid from = heardDevice({.identity = Identity::changing});
    const Uuid to = world->bond(from);
    ASSERT_NE(from, to);
    EXPECT_TRUE(world->until([&] { return !told.identities.empty(); }));
    const int before = told.heard(from).times;
    EXPECT_TRUE(hears(to));
    world->pass(while_);
    EXPECT_EQ(told.identities, (std::vector{std::pair(from, to)}));
    EXPECT_EQ(told.heard(from).times, before);
    EXPECT_FALSE(central.changesAddress(to));
}

TEST_F(ListeningContract, WithTheRadioOffNothingIsHeardAndWithItOnEverythingAgain) {
    start();
    const Uuid id = heardDevice({});
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    EXPECT_EQ(central.state(), CentralState::poweredOff);
    const int before = told.heard(id).times;
    world->pass(while_);
    EXPECT_EQ(told.heard(id).times, before);
    world->setPowered(true);
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    EXPECT_TRUE(hears(id));
}

TEST_F(ListeningContract, AfterTheRadioWasOffAScanHasToBeAskedForAnew) {
    start();
    const Uuid id = heardDevice({});
    told.scans = false;
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    const int before = told.heard(id).times;
    world->setPowered(true);
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    world->pass(while_);
    EXPECT_EQ(told.heard(id).times, before);
    quietly([&] { central.scan(); });
    EXPECT_TRUE(hears(id));
}

TEST_F(ListeningContract, WhatIsWantedHoldsWhileTheRadioIsOff) {
    const Uuid id = world->add({});
    start({});
    world->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    want({.hear = {id}});
    world->speak(id);
    world->setPowered(true);
    EXPECT_TRUE(hears(id));
}

TEST_F(ListeningContract, NothingIsToldOnceTheDelegateHasGone) {
    start();
    const Uuid id = heardDevice({.identity = Identity::bonded});
    connect(id);
    told.follow(nullptr);
    const std::size_t before = told.calls();
    central.connect(id);
    central.readRSSI(id);
    world->pass(while_);
    world->setPowered(false);
    world->pass(1s);
    EXPECT_EQ(told.calls(), before);
}
