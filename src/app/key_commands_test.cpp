#include "app/key_commands.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct KeyCommandsTest : testing::Test {
    using Lines = std::vector<std::string>;

    World world;
    AppModel model{world.surroundings()};
    Lines lines;
    std::optional<KeyAdder::Outcome> outcome;
    std::optional<Failure> kept; ///< why the settings are not

    [[nodiscard]] PrintLine print() {
        return [this](std::string_view line) { lines.emplace_back(line); };
    }
    [[nodiscard]] KeyAdder adder(unsigned number) {
        return {model, world.time, numbered(number), [this] { return kept; },
                [this](KeyAdder::Outcome result, const Message& message) {
                    outcome = result;
                    lines.push_back(message.builtIn());
                }};
    }
    [[nodiscard]] Lines take() { return std::exchange(lines, {}); }
};

} // namespace

TEST_F(KeyCommandsTest, DevicesAreListedOnceASecondStrongestFirst) {
    const DeviceListing listing(model, world.time, false, print());
    world.central.setState(CentralState::poweredOn);
    world.hearApple(1, -70, 0x10, "Telefoon van Zoë");
    world.hearApple(2, -50);
    world.central.advertise({.id = numbered(3), .rssi = -40, .localName = "Tag"});
    world.pass(1s);
    EXPECT_EQ(take(), (Lines{"",
                             "00000000-0000-0000-0000-000000000002  -                         "
                             "Apple-apparaat      -50 dBm",
                             "00000000-0000-0000-0000-000000000001  Telefoon van Zoë          "
                             "Apple-apparaat      -70 dBm"}));
    world.pass(5s);
    EXPECT_EQ(lines.size(), 15U);
    EXPECT_TRUE(lines.back().ends_with("  - dBm"));
}

TEST_F(KeyCommandsTest, OthersAreListedOnRequest) {
    const DeviceListing listing(model, world.time, true, print());
    world.central.setState(CentralState::poweredOn);
    world.central.advertise({.id = numbered(3), .rssi = -40, .localName = "Tag\n\x1B[2J"});
    world.pass(1s);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[1].starts_with("00000000-0000-0000-0000-000000000003  Tag\uFFFD\uFFFD[2J     "
                                     "             Bluetooth-apparaat"));
}

TEST_F(KeyCommandsTest, ARadioThatIsNotOnIsNamedInsteadOfAList) {
    const DeviceListing listing(model, world.time, false, print());
    world.central.setState(CentralState::poweredOff);
    world.pass(1s);
    EXPECT_EQ(take(), (Lines{"", "Bluetooth staat uit"}));
    world.central.setState(CentralState::poweredOn);
    world.pass(1s);
    EXPECT_EQ(take(), (Lines{"", "Nog geen apparaten gehoord"}));
}

TEST_F(KeyCommandsTest, AKeyIsAddedWhenItsDeviceIsHeard) {
    const auto adding = adder(3);
    world.central.setState(CentralState::poweredOn);
    world.pass(20s);
    EXPECT_FALSE(outcome);
    world.hear(3, -60); // without a name and not the maker's: chosen is chosen
    world.pass(1s);
    EXPECT_EQ(outcome, KeyAdder::Outcome::added);
    EXPECT_EQ(take(), Lines{"Sleutel toegevoegd: Bluetooth-apparaat, drempel -75 dBm"});
    EXPECT_EQ(model.settings().keys.get().at(0).id, numbered(3));
    world.pass(60s);
    EXPECT_TRUE(lines.empty());
}

TEST_F(KeyCommandsTest, AfterThirtySecondsOfSilenceItGivesUp) {
    const auto adding = adder(3);
    world.central.setState(CentralState::poweredOff);
    world.pass(30s - 1ns);
    EXPECT_FALSE(outcome);
    world.pass(1ns);
    EXPECT_EQ(outcome, KeyAdder::Outcome::notHeard);
    EXPECT_EQ(take(), Lines{"Niet gehoord binnen 30 s: 00000000-0000-0000-0000-000000000003 "
                            "(Bluetooth staat uit)"});
    EXPECT_TRUE(model.settings().keys.get().empty());
}

TEST_F(KeyCommandsTest, ADeviceThatChangesItsAddressIsListedSo) {
    const DeviceListing listing(model, world.time, true, print());
    world.central.setState(CentralState::poweredOn);
    world.central.setChanging(numbered(3), true);
    world.central.advertise({.id = numbered(3), .rssi = -40, .localName = "Tag"});
    world.pass(1s);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[1].ends_with("-40 dBm  wisselt van adres"));
}

TEST_F(KeyCommandsTest, ADeviceThatChangesItsAddressIsRefusedAsAKey) {
    const auto adding = adder(3);
    world.central.setState(CentralState::poweredOn);
    world.central.setChanging(numbered(3), true);
    world.hear(3, -40);
    world.pass(1s);
    EXPECT_EQ(outcome, KeyAdder::Outcome::refused);
    EXPECT_EQ(take(), Lines{"Dit apparaat wisselt van adres. Koppel het eerst met deze computer."});
    EXPECT_TRUE(model.settings().keys.get().empty());
}

TEST_F(KeyCommandsTest, TheListIsWantedWhileItIsShown) {
    const DeviceListing listing(model, world.time, false, print());
    EXPECT_TRUE(world.central.wanted().list);
}

TEST_F(KeyCommandsTest, AKeyIsNotAddedTwice) {
    model.settings().addKey({.id = numbered(3)});
    const auto adding = adder(3);
    world.pass(0s);
    EXPECT_EQ(outcome, KeyAdder::Outcome::alreadyAKey);
    EXPECT_EQ(model.settings().keys.get().size(), 1U);
}

TEST_F(KeyCommandsTest, NothingIsConnectedWhileChoosing) {
    const auto adding = adder(3);
    world.central.know(numbered(3));
    world.central.setState(CentralState::poweredOn);
    world.hearApple(3, -50);
    world.pass(10s);
    EXPECT_EQ(world.takeCalls(), Lines{"scan"});
}

TEST_F(KeyCommandsTest, KeysAreListedAndRemoved) {
    printKeys(model.settings(), print());
    EXPECT_EQ(take(), Lines{"Geen sleutels"});
    model.settings().addKey({.id = numbered(3), .name = "Tag", .model = "Watch6,1"});
    printKeys(model.settings(), print());
    EXPECT_EQ(take(), Lines{"00000000-0000-0000-0000-000000000003  Tag                       "
                            "Apple Watch         drempel -75 dBm"});
    const auto keep = [] { return std::optional<Failure>(); };
    EXPECT_EQ(removeKey(model.settings(), numbered(9), keep).failure().message,
              "Geen sleutel met id 00000000-0000-0000-0000-000000000009");
    EXPECT_EQ(*removeKey(model.settings(), numbered(3), keep),
              "Sleutel verwijderd: 00000000-0000-0000-0000-000000000003");
    EXPECT_TRUE(model.settings().keys.get().empty());
}

TEST_F(KeyCommandsTest, WhatCannotBeKeptIsNoSuccess) {
    kept = Failure{"de schijf is vol"};
    const auto adding = adder(3);
    world.central.setState(CentralState::poweredOn);
    world.hear(3, -40);
    world.pass(1s);
    EXPECT_EQ(outcome, KeyAdder::Outcome::notKept);
    EXPECT_EQ(take(), Lines{"de schijf is vol"});
    EXPECT_EQ(removeKey(model.settings(), numbered(3), [this] { return kept; }).failure(),
              Failure{"de schijf is vol"});
}
