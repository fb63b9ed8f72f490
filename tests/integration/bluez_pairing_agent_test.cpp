// What is answered to who asks whether somebody may bond: the visitor's code and nothing else.

#include "tests/integration/coupling_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct PairingAgentTest : CouplingWorld {
    void SetUp() override { bluez.addAdapter(); }
};

} // namespace

TEST_F(PairingAgentTest, TheVisitorsCodeWaitsForItsAnswer) {
    appearing();
    visited();
    const auto yes = confirm(7);
    EXPECT_EQ(take(), Events{"code 7"});
    EXPECT_EQ(*yes, "");
    radio->answer(true);
    radio->answer(false); // there is no question any more
    loop.settle();
    EXPECT_EQ(*yes, "ok");
    const auto no = confirm(999'999);
    EXPECT_EQ(take(), Events{"code 999999"});
    radio->answer(false);
    loop.settle();
    EXPECT_EQ(*no, turnedDown);
}

TEST_F(PairingAgentTest, ACodeOfAnyoneElseIsTurnedDownAndLoggedOnce) {
    appearing();
    EXPECT_EQ(*confirm(1), turnedDown); // nobody has come
    visited();
    comes(other);
    EXPECT_EQ(*confirm(1, other), turnedDown);
    EXPECT_EQ(*confirm(1'000'000), turnedDown); // is none
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(log.messages,
              std::vector<std::string>{
                  "Koppelen: een ander toestel wilde koppelen en is geweigerd: " + pathOf(phone)});
}

TEST_F(PairingAgentTest, ACodeThatIsWithdrawnIsNotWaitedFor) {
    appearing();
    visited();
    const auto code = confirm(123456);
    const auto cancelled = bluez.ask("Cancel", {});
    EXPECT_EQ(take(), (Events{"code 123456", "withdrawn"}));
    EXPECT_EQ(*code, turnedDown);
    EXPECT_EQ(*cancelled, "ok");
    static_cast<void>(bluez.ask("Cancel", {}));
    EXPECT_EQ(take(), Events{}); // there was none
}

TEST_F(PairingAgentTest, NoQuestionStaysOpenWhenItGoes) {
    appearing();
    visited();
    const auto code = confirm(123456);
    radio->disappear();
    ASSERT_TRUE(isTold("gone"));
    EXPECT_EQ(*code, turnedDown);
    EXPECT_EQ(take(), (Events{"code 123456", "gone"}));
}

TEST_F(PairingAgentTest, WithoutACodeTheVisitorAloneIsAuthorized) {
    for (const auto confirmation : {Confirmation::code, Confirmation::without}) {
        appearing(confirmation);
        EXPECT_EQ(*ask("RequestAuthorization", phone), turnedDown); // before it has come
        visited();
        comes(other);
        EXPECT_EQ(*ask("RequestAuthorization", phone), "ok");
        EXPECT_EQ(*ask("RequestAuthorization", other), turnedDown);
        gone();
        bluez.bluez.removeDevice(phone);
        bluez.bluez.removeDevice(other);
        static_cast<void>(take());
    }
}

TEST_F(PairingAgentTest, WhoHasBondedMayNotBondOnceMore) {
    appearing();
    bonded();
    EXPECT_EQ(*ask("RequestAuthorization", phone), turnedDown);
    EXPECT_EQ(*confirm(1), turnedDown);
}

TEST_F(PairingAgentTest, ACodeWhereNobodyCanCompareOneIsTurnedDown) {
    appearing(Confirmation::without);
    visited();
    EXPECT_EQ(*confirm(1), turnedDown);
    EXPECT_EQ(take(), Events{});
}

TEST_F(PairingAgentTest, WhatIsMoreThanABondIsTurnedDown) {
    appearing();
    visited();
    const dbus::ObjectPath device{pathOf(phone)};
    const std::string text = "0000";
    std::vector<std::shared_ptr<std::string>> answers{
        bluez.ask("RequestPinCode", {device}), bluez.ask("DisplayPinCode", {device, text}),
        bluez.ask("RequestPasskey", {device}), bluez.ask("AuthorizeService", {device, text})};
    loop.settle();
    for (const auto& answer : answers)
        EXPECT_EQ(*answer, turnedDown);
    EXPECT_EQ(take(), Events{});
}

TEST_F(PairingAgentTest, WhoIsNotBluetoothdIsRefusedAndLoggedOnce) {
    appearing();
    visited();
    const auto code = confirm(123456);
    static_cast<void>(take());
    auto stranger = loop.connect();
    const auto driven = loop.attach(*stranger);
    const auto asks = [&](const std::string& object, const std::string& interface,
                          const std::string& member, std::vector<dbus::Argument> what) {
        std::string result;
        const auto call = stranger->call(
            {.destination = bluez.agents.back().owner,
             .path = object,
             .interface = interface,
             .member = member,
             .arguments = std::move(what)},
            [&](const dbus::Message& answer) { result = answer.error().value_or("ok"); });
        EXPECT_TRUE(loop.runUntil([&] { return !result.empty(); }));
        return result;
    };
    const dbus::ObjectPath device{pathOf(phone)};
    const std::string denied = "org.freedesktop.DBus.Error.AccessDenied";
    const std::string agent = "/nl/wegslot/coupling/agent";
    const std::string service = "/nl/wegslot/coupling/application/service";
    EXPECT_EQ(asks(agent, "org.bluez.Agent1", "RequestAuthorization", {device}), denied);
    EXPECT_EQ(asks(agent, "org.bluez.Agent1", "RequestConfirmation", {device, 1U}), denied);
    EXPECT_EQ(asks(agent, "org.bluez.Agent1", "Cancel", {}), denied);
    EXPECT_EQ(asks(agent, "org.bluez.Agent1", "Release", {}), denied);
    EXPECT_EQ(
        asks("/nl/wegslot/coupling/advertisement", "org.bluez.LEAdvertisement1", "Release", {}),
        denied);
    EXPECT_EQ(asks(service + "/location", "org.bluez.GattCharacteristic1", "ReadValue",
                   {dbus::Dictionary{}}),
              denied);
    EXPECT_EQ(take(), Events{});
    EXPECT_EQ(*code, ""); // bluetoothd's question still waits
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_TRUE(log.messages[0].starts_with(
        "Koppelen: alleen bluetoothd mag hier iets vragen, geweigerd: "))
        << log.messages[0];
}
