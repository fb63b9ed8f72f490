// BluezCentral on a real bus against a bluetoothd that a test plays.

#include "scanner/bluez/bluez_central.h"

#include "scanner/bluez/device_id.h"
#include "tests/support/captured_log.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_links.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>

#include <poll.h>
#include <systemd/sd-bus.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct Report {
    Uuid id;
    int rssi;
    std::optional<std::string> name;
    std::optional<std::vector<std::uint8_t>> data;
    friend bool operator==(const Report&, const Report&) = default;
};

/// Keeps what it is told, and asks for a scan whenever the radio is on, as the scanner does.
class RecordingDelegate final : public CentralDelegate {
public:
    explicit RecordingDelegate(BluetoothCentral& central) : central_(central) {
        central_.setDelegate(this);
    }
    ~RecordingDelegate() override { central_.setDelegate(nullptr); }

    void didUpdateState() override {
        states.push_back(central_.state());
        if (states.back() == CentralState::poweredOn) central_.scan();
    }
    void didDiscover(const Advertisement& heard) override {
        Report report{heard.id, heard.rssi, std::nullopt, std::nullopt};
        if (heard.peripheralName) report.name = std::string(*heard.peripheralName);
        if (heard.manufacturerData)
            report.data.emplace(heard.manufacturerData->begin(), heard.manufacturerData->end());
        reports.push_back(std::move(report));
    }
    void didConnect(const Uuid&) override { ++connected; }
    void didFailToConnect(const Uuid& id) override { failed.push_back(id); }
    void didDisconnect(const Uuid&, const std::optional<std::string>&) override {}
    void didReadRSSI(const Uuid&, std::optional<int> rssi) override { readings.push_back(rssi); }
    void didDiscoverServices(const Uuid&, std::span<const GattUuid>) override {}
    void didDiscoverCharacteristics(const Uuid&, GattUuid, std::span<const GattUuid>) override {}
    void didUpdateValue(const Uuid&, GattUuid, const std::optional<std::string_view>&) override {}
    void didIdentify(const Uuid& from, const Uuid& to) override {
        identified.emplace_back(from, to);
    }

    std::vector<CentralState> states;
    std::vector<Report> reports;
    std::vector<Uuid> failed;
    std::vector<std::optional<int>> readings;
    std::vector<std::pair<Uuid, Uuid>> identified;
    int connected = 0;

private:
    BluetoothCentral& central_;
};

const std::string phone = "AA:BB:CC:DD:EE:01";
const std::string tag = "AA:BB:CC:DD:EE:02";

Uuid idOf(const std::string& address) { return deviceId(address, "public"); }

struct BluezCentralTest : testing::Test {
    CapturedLog log;
    BusLoop loop;
    std::unique_ptr<LookAlikeBluez> bluez = std::make_unique<LookAlikeBluez>(loop);
    dbus::Connection systemBus{loop.opener(), loop.attacher(), loop.time};
    LookAlikeLinks links{loop.time};
    AddressResolver nobody;
    BluezCentral central{systemBus, loop.time, loop.time, links, nobody};
    RecordingDelegate delegate{central};

    // A list is open unless a test says otherwise: then the radio listens all the time.
    void SetUp() override { central.want({.list = true}); }

    [[nodiscard]] bool reaches(CentralState state) {
        return loop.runUntil(
            [&] { return !delegate.states.empty() && delegate.states.back() == state; });
    }
    /// An adapter that is on, and discovery going on it.
    void scanning() {
        bluez->addAdapter();
        ASSERT_TRUE(startsDiscovery(1));
    }
    [[nodiscard]] bool startsDiscovery(long times) {
        return loop.runUntil([&] { return bluez->service.calls("StartDiscovery") >= times; }) &&
               (loop.settle(), true);
    }
    [[nodiscard]] bool hears(std::size_t count) {
        return loop.runUntil([&] { return delegate.reports.size() >= count; });
    }
};

} // namespace

TEST_F(BluezCentralTest, AskedForAScanItSetsTheFilterThatDeliversEveryReport) {
    scanning();
    EXPECT_EQ(delegate.states, std::vector{CentralState::poweredOn});
    EXPECT_EQ(bluez->filter(), (LookAlikeBluez::Properties{{"Transport", std::string("le")},
                                                           {"RSSI", std::int16_t{-127}},
                                                           {"DuplicateData", true},
                                                           {"Pattern", std::string()}}));
}

TEST_F(BluezCentralTest, AFilterKeyThatTheDaemonDoesNotKnowIsLeftOut) {
    bluez->understood = {"UUIDs", "RSSI", "Transport"};
    scanning();
    EXPECT_EQ(bluez->filter(), (LookAlikeBluez::Properties{{"Transport", std::string("le")},
                                                           {"RSSI", std::int16_t{-127}}}));
}

TEST_F(BluezCentralTest, EachReportIsAnAdvertisementAlsoAnEqualOne) {
    scanning();
    bluez->addDevice(phone, -60, {{"Name", std::string("Telefoon")}});
    bluez->report(phone, -60);
    bluez->report(phone, -60);
    bluez->report(phone, -61);
    ASSERT_TRUE(hears(4));
    const Report first{idOf(phone), -60, "Telefoon", std::nullopt};
    EXPECT_EQ(delegate.reports[0], first);
    EXPECT_EQ(delegate.reports[1], first);
    EXPECT_EQ(delegate.reports[2], first);
    EXPECT_EQ(delegate.reports[3].rssi, -61);
}

TEST_F(BluezCentralTest, WhatHasComeInIsToldWhenItIsAskedFor) {
    scanning();
    bluez->addDevice(phone, -60);
    ASSERT_TRUE(hears(1));
    bluez->report(phone, -70);
    // The loop does not turn, so nobody else reads it.
    pollfd watched{systemBus.bus().get()->fd(), POLLIN, 0};
    while (delegate.reports.size() < 2 && poll(&watched, 1, 10'000) == 1)
        central.catchUp();
    ASSERT_EQ(delegate.reports.size(), 2U);
    EXPECT_EQ(delegate.reports[1].rssi, -70);
}

TEST_F(BluezCentralTest, ManufacturerDataHasItsCompanyPutBackAndBelongsToItsReport) {
    scanning();
    using Data = LookAlikeBluez::ManufacturerData;
    bluez->addDevice(phone, -60, {{"ManufacturerData", Data{{0x004C, {0x10, 0x05}}}}});
    bluez->report(phone, -61);
    bluez->report(phone, -62, {{"ManufacturerData", Data{{0x004C, {}}}}});
    bluez->report(phone, -63, {{"ManufacturerData", Data{{0x0006, {0x01}}, {0x004C, {0x0C}}}}});
    bluez->report(phone, -64, {{"ManufacturerData", Data{{0x0106, {0x01}}}}});
    ASSERT_TRUE(hears(5));
    using Bytes = std::vector<std::uint8_t>;
    EXPECT_EQ(delegate.reports[0].data, (Bytes{0x4C, 0x00, 0x10, 0x05}));
    EXPECT_EQ(delegate.reports[1].data, std::nullopt); // what was said before is not said now
    EXPECT_EQ(delegate.reports[2].data, (Bytes{0x4C, 0x00}));
    EXPECT_EQ(delegate.reports[3].data, (Bytes{0x4C, 0x00, 0x0C}));
    EXPECT_EQ(delegate.reports[4].data, (Bytes{0x06, 0x01, 0x01}));
}

TEST_F(BluezCentralTest, AStrengthOfUnknownAgeIsNoReport) {
    bluez->addAdapter();
    bluez->addDevice(phone, -60); // before anybody listens: read at start-up
    ASSERT_TRUE(startsDiscovery(1));
    EXPECT_TRUE(delegate.reports.empty());
    bluez->report(phone, -61);
    ASSERT_TRUE(hears(1));
    EXPECT_EQ(delegate.reports[0].rssi, -61);
}

TEST_F(BluezCentralTest, ANameIsKeptUntilAnotherComes) {
    scanning();
    bluez->addDevice(phone);
    loop.settle();
    EXPECT_EQ(central.peripheralName(idOf(phone)), std::nullopt);
    bluez->changeDevice(phone, {{"Name", std::string("Telefoon")}, {"Alias", std::string("x")}});
    bluez->report(phone, -60);
    ASSERT_TRUE(hears(1));
    EXPECT_EQ(delegate.reports[0].name, "Telefoon");
    EXPECT_EQ(central.peripheralName(idOf(phone)), "Telefoon");
}

TEST_F(BluezCentralTest, ADeviceWhoseAddressBecomesAnIdentityIsToldOnce) {
    scanning();
    bluez->addDevice("41:00:00:00:00:01", -60, {{"AddressType", std::string("random")}});
    bluez->changeDevice("41:00:00:00:00:01",
                        {{"Address", phone}, {"AddressType", std::string("public")}});
    bluez->changeDevice("41:00:00:00:00:01", {{"Address", phone}});
    bluez->report("41:00:00:00:00:01", -62); // the path stays
    ASSERT_TRUE(hears(2));
    const std::pair expected{deviceId("41:00:00:00:00:01", "random"), idOf(phone)};
    EXPECT_EQ(delegate.identified, std::vector{expected});
    EXPECT_EQ(delegate.reports[1].id, idOf(phone));
}

TEST_F(BluezCentralTest, TheStateFollowsTheAdaptersPower) {
    scanning();
    bluez->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    bluez->addDevice(phone, -60); // not scanning: not heard
    loop.settle();
    EXPECT_TRUE(delegate.reports.empty());
    bluez->setPowered(true);
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    ASSERT_TRUE(startsDiscovery(2)); // the adapter forgot session and filter
    EXPECT_EQ(bluez->service.calls("SetDiscoveryFilter"), 2);
}

TEST_F(BluezCentralTest, APowerCycleWithinOneTurnStartsDiscoveryAnew) {
    scanning();
    bluez->setPowered(false);
    bluez->setPowered(true);
    ASSERT_TRUE(startsDiscovery(2));
    EXPECT_EQ(central.state(), CentralState::poweredOn);
}

TEST_F(BluezCentralTest, ADaemonThatIsKilledAndComesBackIsScannedAgain) {
    scanning();
    bluez->vanish();
    ASSERT_TRUE(reaches(CentralState::resetting));
    bluez->appear();
    bluez->addAdapter();
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    ASSERT_TRUE(startsDiscovery(2));
    bluez->addDevice(phone, -60);
    ASSERT_TRUE(hears(1));
}

TEST_F(BluezCentralTest, ADaemonThatStaysAwayCountsAsNoneAfterTenSeconds) {
    scanning();
    bluez->vanish();
    ASSERT_TRUE(reaches(CentralState::resetting));
    loop.pass(10s - 1ns);
    EXPECT_EQ(central.state(), CentralState::resetting);
    EXPECT_EQ(central.stateWords(), std::nullopt);
    loop.pass(1ns);
    EXPECT_EQ(central.state(), CentralState::unsupported);
    EXPECT_EQ(central.stateWords(), "Bluetooth draait niet op deze computer");
}

TEST_F(BluezCentralTest, WithoutAnAdapterTheRadioIsUnsupportedAfterFiveSeconds) {
    ASSERT_TRUE(reaches(CentralState::resetting));
    loop.pass(5s);
    EXPECT_EQ(central.state(), CentralState::unsupported);
    bluez->addAdapter();
    ASSERT_TRUE(reaches(CentralState::poweredOn));
}

TEST_F(BluezCentralTest, AnUnpluggedAdapterIsOffAtFirstAndThenNone) {
    scanning();
    bluez->removeAdapter();
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    loop.pass(5s);
    EXPECT_EQ(central.state(), CentralState::unsupported);
}

TEST_F(BluezCentralTest, WhatIsSaidOfAnAdapterThatHasGoneMakesNone) {
    scanning();
    bluez->removeAdapter();
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    bluez->changeAdapter({{"Powered", true}});
    bluez->changeObject(LookAlikeBluez::adapterPath, "org.bluez.LEAdvertisingManager1",
                        {{"SupportedInstances", std::int16_t{5}}});
    loop.settle();
    EXPECT_FALSE(central.adapter());
    EXPECT_EQ(central.state(), CentralState::poweredOff);
}

TEST_F(BluezCentralTest, OfSeveralAdaptersTheFirstThatIsOnIsUsed) {
    bluez->addAdapter("/org/bluez/hci0", false);
    bluez->addAdapter("/org/bluez/hci1", true);
    bluez->addAdapter("/org/bluez/hci2", true);
    ASSERT_TRUE(startsDiscovery(1));
    bluez->addDevice(phone, -60, {}, "/org/bluez/hci2"); // the same device at another antenna
    bluez->addDevice(phone, -80, {}, "/org/bluez/hci1");
    ASSERT_TRUE(hears(1));
    loop.settle();
    ASSERT_EQ(delegate.reports.size(), 1U);
    EXPECT_EQ(delegate.reports[0].rssi, -80);
    bluez->removeAdapter("/org/bluez/hci1");
    ASSERT_TRUE(startsDiscovery(2)); // on the next one that is on
    bluez->report(phone, -55, {}, "/org/bluez/hci2");
    ASSERT_TRUE(hears(2));
    EXPECT_EQ(delegate.reports[1].rssi, -55);
}

TEST_F(BluezCentralTest, ARefusedStartIsTriedAgainEverMoreRarely) {
    bluez->discoveryError = "org.bluez.Error.InProgress"; // as after a kill
    scanning();
    loop.pass(1s - 1ns);
    EXPECT_EQ(bluez->service.calls("StartDiscovery"), 1);
    loop.pass(1ns);
    for (long attempt = 2; attempt <= 13; ++attempt) {
        ASSERT_TRUE(startsDiscovery(attempt));
        loop.pass(1s);
    }
    EXPECT_EQ(bluez->service.calls("StartDiscovery"), 13);
    bluez->discoveryError.clear();
    loop.pass(1s);
    ASSERT_TRUE(startsDiscovery(14));
    loop.pass(1h);
    EXPECT_EQ(bluez->service.calls("StartDiscovery"), 14);
}

TEST_F(BluezCentralTest, ARefusalForGoodCostsTwoAttemptsAMinute) {
    bluez->discoveryError = "org.bluez.Error.Failed";
    scanning();
    for (int second = 0; second < 120; ++second)
        loop.pass(1s);
    const auto before = bluez->service.calls("StartDiscovery");
    for (int second = 0; second < 60; ++second)
        loop.pass(1s);
    EXPECT_LE(bluez->service.calls("StartDiscovery") - before, 2);
    EXPECT_GE(bluez->service.calls("StartDiscovery") - before, 1);
}

TEST_F(BluezCentralTest, WhoMayNotScanIsUnauthorized) {
    bluez->discoveryError = "org.freedesktop.DBus.Error.AccessDenied";
    bluez->addAdapter();
    ASSERT_TRUE(reaches(CentralState::unauthorized));
    loop.pass(1h);
    EXPECT_EQ(bluez->service.calls("StartDiscovery"), 1);
}

TEST_F(BluezCentralTest, WhoMayNotReadTheObjectsIsUnauthorized) {
    bluez->objectsError = "org.freedesktop.DBus.Error.AccessDenied";
    ASSERT_TRUE(reaches(CentralState::unauthorized));
}

TEST_F(BluezCentralTest, ABusThatGoesAndComesBackIsFoundAgain) {
    scanning();
    bluez.reset();
    loop.daemon.stop();
    ASSERT_TRUE(reaches(CentralState::unknown));
    loop.time.advance(5s);
    EXPECT_EQ(log.messages,
              std::vector<std::string>{"Geen verbinding met de testbus: kan niet verbinden"});
    loop.time.advance(60s); // tried again and again, and told once
    EXPECT_EQ(log.messages.size(), 1U);
    loop.daemon.start();
    bluez = std::make_unique<LookAlikeBluez>(loop);
    loop.time.advance(5s);
    bluez->addAdapter();
    ASSERT_TRUE(reaches(CentralState::poweredOn));
    ASSERT_TRUE(startsDiscovery(1));
}

TEST_F(BluezCentralTest, WrongTypesAreSkippedAndSpoilNothing) {
    scanning();
    bluez->addDevice(phone, -60);
    bluez->changeDevice(phone, {{"RSSI", std::string("sterk")}, {"Name", std::int16_t{5}}});
    bluez->changeDevice(phone, {{"ManufacturerData", 1.5}, {"RSSI", std::int16_t{-61}}});
    bluez->changeDevice(phone, {{"Address", true}, {"AddressType", -1.0}});
    bluez->service.signal(LookAlikeBluez::pathOf(phone), "org.freedesktop.DBus.Properties",
                          "PropertiesChanged"); // empty
    bluez->service.signal("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded");
    bluez->service.signal("/", "org.freedesktop.DBus.ObjectManager", "InterfacesRemoved");
    bluez->report(tag, -50); // never announced
    bluez->removeDevice(tag);
    bluez->report(phone, -62);
    ASSERT_TRUE(hears(3));
    EXPECT_EQ(delegate.reports[0].rssi, -60);
    EXPECT_EQ(delegate.reports[1].rssi, -61);
    EXPECT_EQ(delegate.reports[2].rssi, -62);
    EXPECT_EQ(delegate.reports[2].id, idOf(phone));
    EXPECT_EQ(delegate.reports[2].name, std::nullopt);
    EXPECT_EQ(delegate.reports.size(), 3U);
}

TEST_F(BluezCentralTest, ADeviceAnnouncedTwiceIsOne) {
    scanning();
    bluez->addDevice(phone, -60);
    bluez->addDevice(phone, -61);
    ASSERT_TRUE(hears(2));
    EXPECT_EQ(delegate.reports[0].id, delegate.reports[1].id);
    bluez->removeDevice(phone);
    bluez->removeDevice(phone);
    loop.settle();
    EXPECT_EQ(central.peripheralName(idOf(phone)), std::nullopt);
}

TEST_F(BluezCentralTest, ALateAnswerOfADaemonThatHasGoneChangesNothing) {
    sd_bus_message* held = nullptr;
    bluez->addAdapter();
    bluez->service.on(
        "org.bluez.Adapter1.SetDiscoveryFilter",
        [&held](LookAlike&, sd_bus_message* call) { held = sd_bus_message_ref(call); });
    ASSERT_TRUE(loop.runUntil([&] { return held != nullptr; }));
    bluez->setPowered(false);
    ASSERT_TRUE(reaches(CentralState::poweredOff));
    bluez->service.reply(held);
    sd_bus_message_unref(held);
    loop.settle();
    EXPECT_EQ(bluez->service.calls("StartDiscovery"), 0);
}

TEST_F(BluezCentralTest, ThousandsOfReportsAtOnceAllArriveInOrder) {
    scanning();
    constexpr int devices = 300;
    constexpr int reports = 6000;
    const auto addressOf = [](int number) {
        std::array<char, 18> text{};
        std::snprintf(text.data(), text.size(), "C0:00:00:00:%02X:%02X", number / 256,
                      number % 256);
        return std::string(text.data());
    };
    for (int number = 0; number < devices; ++number)
        bluez->addDevice(addressOf(number));
    for (int number = 0; number < reports; ++number)
        bluez->report(addressOf(number % devices), static_cast<std::int16_t>(-1 - number % 120));
    ASSERT_TRUE(hears(reports));
    loop.settle();
    ASSERT_EQ(delegate.reports.size(), static_cast<std::size_t>(reports));
    for (int number = 0; number < reports; ++number) {
        const Report& report = delegate.reports[static_cast<std::size_t>(number)];
        ASSERT_EQ(report.rssi, -1 - number % 120);
        ASSERT_EQ(report.id, idOf(addressOf(number % devices)));
    }
}

TEST_F(BluezCentralTest, NothingIsToldOnceTheDelegateHasGone) {
    scanning();
    central.setDelegate(nullptr);
    bluez->addDevice(phone, -60);
    bluez->setPowered(false);
    central.connect(idOf(phone));
    loop.settle();
    EXPECT_TRUE(delegate.reports.empty());
    EXPECT_TRUE(delegate.failed.empty());
    EXPECT_EQ(delegate.states, std::vector{CentralState::poweredOn});
}

TEST_F(BluezCentralTest, ADaemonThatRefusesToListItsObjectsOnceIsAskedAgain) {
    bluez->objectsError = "org.freedesktop.DBus.Error.NoMemory";
    bluez->addAdapter();
    ASSERT_TRUE(loop.runUntil([&] { return bluez->service.calls("GetManagedObjects") == 1; }));
    bluez->objectsError.clear();
    loop.pass(bluez::ObjectWatch::retryInterval - 1ns);
    EXPECT_EQ(bluez->service.calls("GetManagedObjects"), 1);
    loop.pass(1ns);
    EXPECT_TRUE(reaches(CentralState::poweredOn));
    EXPECT_TRUE(startsDiscovery(1));
}
