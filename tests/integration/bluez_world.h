// BluezCentral over a bluetoothd that a test plays, with one device: the device's link, the calls
// to connect it, and what the central tells of it.
#pragma once

#include "scanner/bluez/bluez_central.h"
#include "scanner/bluez/device_id.h"
#include "tests/support/captured_log.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_links.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>

namespace wegslot {

using Events = std::vector<std::string>;
using Properties = LookAlikeBluez::Properties;

/// Writes down what it is told, and asks for a scan whenever the radio is on, as the scanner does.
class EventDelegate final : public CentralDelegate {
public:
    explicit EventDelegate(BluetoothCentral& central) : central_(central) {
        central_.setDelegate(this);
    }
    ~EventDelegate() override { central_.setDelegate(nullptr); }

    void didUpdateState() override {
        if (central_.state() == CentralState::poweredOn) central_.scan();
    }
    void didDiscover(const Advertisement&) override {}
    void didConnect(const Uuid&) override { events.emplace_back("connected"); }
    void didFailToConnect(const Uuid&) override { events.emplace_back("failed"); }
    void didDisconnect(const Uuid&, const std::optional<std::string>& reason) override {
        events.push_back("lost" + (reason ? ": " + *reason : ""));
    }
    void didReadRSSI(const Uuid&, std::optional<int> rssi) override {
        events.push_back("rssi " + (rssi ? std::to_string(*rssi) : "-"));
    }
    void didDiscoverServices(const Uuid&, std::span<const GattUuid> services) override {
        events.push_back("services " + std::to_string(services.size()));
    }
    void didDiscoverCharacteristics(const Uuid&, GattUuid,
                                    std::span<const GattUuid> found) override {
        events.push_back("characteristics " + std::to_string(found.size()));
    }
    void didUpdateValue(const Uuid&, GattUuid,
                        const std::optional<std::string_view>& value) override {
        events.push_back("value " + std::string(value.value_or("-")));
    }
    void didIdentify(const Uuid&, const Uuid&) override { events.emplace_back("identified"); }

    Events events;

private:
    BluetoothCentral& central_;
};

inline const std::string address = "AA:BB:CC:DD:EE:01";
inline const std::string audioSource = "0000110a-0000-1000-8000-00805f9b34fb";

/// The fixture; tests of one subject derive from it.
struct BluezWorld : testing::Test {
    CapturedLog log;
    BusLoop loop;
    LookAlikeBluez bluez{loop};
    dbus::Connection systemBus{loop.opener(), loop.attacher(), loop.time};
    LookAlikeLinks links{loop.time};
    AddressResolver nobody;
    std::optional<BluezCentral> central{std::in_place, systemBus, loop.time,
                                        loop.time,     links,     nobody};
    std::optional<EventDelegate> delegate{*central};
    const Uuid id = deviceId(address, "public");
    std::vector<sd_bus_message*> connects; ///< calls that wait for their answer

    void SetUp() override {
        bluez.service.on("org.bluez.Device1.Connect", [this](LookAlike&, sd_bus_message* call) {
            connects.push_back(sd_bus_message_ref(call));
        });
        for (const auto* const method :
             {"org.bluez.Device1.Disconnect", "org.bluez.Bearer.LE1.Disconnect",
              "org.bluez.Adapter1.StopDiscovery"})
            bluez.service.on(method,
                             [](LookAlike& service, sd_bus_message* call) { service.reply(call); });
        bluez.service.on("org.freedesktop.DBus.Properties.Get",
                         [this](LookAlike& service, sd_bus_message* call) {
                             service.reply(call, [this](sd_bus_message* message) {
                                 sd_bus_message_append(message, "v", "b", property ? 1 : 0);
                             });
                         });
        bluez.addAdapter();
    }
    void TearDown() override {
        for (sd_bus_message* const call : connects)
            sd_bus_message_unref(call);
    }

    /// A radio that is on, with this device known and wanted as a key.
    void start(Properties further = {{"Paired", true}}) {
        bluez.addDevice(address, {}, std::move(further));
        central->want({.connect = {id}});
        ASSERT_TRUE(loop.runUntil([&] { return bluez.service.calls("StartDiscovery") >= 1; }));
        loop.settle();
    }
    void hear() {
        bluez.report(address, -60);
        loop.settle();
    }
    void change(const Properties& properties) {
        bluez.changeDevice(address, properties);
        loop.settle();
    }
    void linkComes() {
        links.strengths[address] = -55;
        change({{"Connected", true}});
    }
    void linkGoes() {
        links.strengths.erase(address);
        change({{"ServicesResolved", false}, {"Connected", false}});
    }
    void answerConnect(const std::string& error = {}) {
        ASSERT_FALSE(connects.empty());
        sd_bus_message* const call = connects.back();
        connects.pop_back();
        error.empty() ? bluez.service.reply(call) : bluez.service.fail(call, error);
        sd_bus_message_unref(call);
        loop.settle();
        loop.settle(); // the central may have to ask once more
    }
    /// Connected over a link that we opened.
    void connected() {
        central->connect(id);
        hear();
        linkComes();
        answerConnect();
        ASSERT_EQ(take(), Events{"connected"});
    }
    [[nodiscard]] long calls(const std::string& member) const {
        return bluez.service.calls(member);
    }
    [[nodiscard]] bool isCalled(const std::string& member, long times) {
        return loop.runUntil([&] { return calls(member) >= times; }) && (loop.settle(), true);
    }
    /// Passes time in small steps, so that every timer's calls are answered before the next.
    void live(Nanoseconds duration) {
        for (; duration > Nanoseconds{0}; duration -= std::chrono::milliseconds{100})
            loop.pass(std::chrono::milliseconds{100});
    }
    /// Passes time until discovery is on.
    void untilListening() {
        while (calls("StartDiscovery") == calls("StopDiscovery"))
            live(std::chrono::milliseconds{100});
    }
    Events take() { return std::exchange(delegate->events, {}); }

    bool property = false; ///< what `Connected` reads as
};

} // namespace wegslot
