#include "recording/central_tap.h"

#include "scanner/model_identifier.h"
#include "stage/staged_central.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace wegslot;

namespace {

/// Notes what it is told of, with its own name before it.
struct Told final : CentralDelegate {
    Told(std::string name, std::vector<std::string>& list) : who(std::move(name)), told(list) {}

    void note(const std::string& what) { told.push_back(who + " " + what); }

    void didUpdateState() override { note("state"); }
    void didDiscover(const Advertisement& heard) override {
        note("heard " + std::to_string(heard.rssi));
    }
    void didConnect(const Uuid&) override { note("connected"); }
    void didFailToConnect(const Uuid&) override { note("failed"); }
    void didDisconnect(const Uuid&, const std::optional<std::string>& reason) override {
        note("disconnected " + reason.value_or("-"));
    }
    void didReadRSSI(const Uuid&, std::optional<int> rssi) override {
        note("strength " + std::to_string(rssi.value_or(0)));
    }
    void didDiscoverServices(const Uuid&, std::span<const GattUuid> list) override {
        note("services " + std::to_string(list.size()));
    }
    void didDiscoverCharacteristics(const Uuid&, GattUuid,
                                    std::span<const GattUuid> list) override {
        note("characteristics " + std::to_string(list.size()));
    }
    void didUpdateValue(const Uuid&, GattUuid,
                        const std::optional<std::string_view>& value) override {
        note("value " + std::string(value.value_or("-")));
    }
    void didIdentify(const Uuid&, const Uuid&) override { note("identity"); }

    std::string who;
    std::vector<std::string>& told;
};

} // namespace

TEST(CentralTap, EachReportReachesTheListenerFirst) {
    StagedCentral central;
    CentralTap tap(central);
    std::vector<std::string> told;
    Told core("core", told);
    Told listener("listener", told);
    tap.setDelegate(&core);
    tap.setListener(&listener);
    const Uuid id = numbered(1);
    const std::vector<GattUuid> one{ModelIdentifier::deviceInfoService};
    central.setState(CentralState::poweredOn);
    central.advertise({.id = id, .rssi = -50});
    central.connected(id);
    central.connectFailed(id);
    central.disconnected(id, "weg");
    central.rssiRead(id, -44);
    central.services(id, one);
    central.characteristics(id, ModelIdentifier::deviceInfoService, one);
    central.value(id, ModelIdentifier::modelCharacteristic, "P1");
    central.identify(id, numbered(2));

    const std::vector<std::string> reports{
        "state",        "heard -50",  "connected",         "failed",   "disconnected weg",
        "strength -44", "services 1", "characteristics 1", "value P1", "identity"};
    std::vector<std::string> expected;
    for (const std::string& report : reports)
        for (const char* const who : {"listener ", "core "})
            expected.push_back(who + report);
    EXPECT_EQ(told, expected);
}

TEST(CentralTap, WithoutAListenerTheCoreIsToldAllTheSame) {
    StagedCentral central;
    CentralTap tap(central);
    std::vector<std::string> told;
    Told core("core", told);
    tap.setDelegate(&core);
    central.connected(numbered(1));
    tap.setDelegate(nullptr);
    central.connected(numbered(1));
    EXPECT_EQ(told, std::vector<std::string>{"core connected"});
}

TEST(CentralTap, EveryQuestionAndEveryWishIsPassedOn) {
    StagedCentral central;
    CentralTap tap(central);
    std::vector<std::string> calls;
    central.onCall(
        [&calls](std::string_view operation, const Uuid*) { calls.emplace_back(operation); });
    const Uuid id = numbered(1);
    central.setState(CentralState::poweredOff, CentralAuthorization::denied);
    central.know(id, "Tag");
    central.setChanging(id, true);
    EXPECT_EQ(tap.state(), CentralState::poweredOff);
    EXPECT_EQ(tap.authorization(), CentralAuthorization::denied);
    EXPECT_TRUE(tap.changesAddress(id));
    EXPECT_EQ(tap.retrieve({id, numbered(2)}), std::vector<Uuid>{id});
    EXPECT_EQ(tap.peripheralName(id), "Tag");
    tap.want({.list = true});
    EXPECT_TRUE(central.wanted().list);
    tap.scan();
    tap.connect(id);
    EXPECT_EQ(tap.peripheralState(id), PeripheralState::connecting);
    tap.readRSSI(id);
    tap.discoverServices(id, GattUuid{1});
    tap.discoverCharacteristics(id, GattUuid{1}, GattUuid{2});
    tap.readValue(id, GattUuid{2});
    tap.cancelConnection(id);
    EXPECT_EQ(calls, (std::vector<std::string>{"scan", "connect", "readRSSI", "discoverServices",
                                               "discoverCharacteristics", "readValue", "cancel"}));
}
