// The fixture of the contract: a world with its radio on, and the port's operations, each of which
// must tell nothing from within.
#pragma once

#include "tests/contract/radio_world.h"

#include <gtest/gtest.h>

#include <chrono>

namespace wegslot {

using Events = std::vector<std::string>;

struct RadioContract : testing::Test {
    static constexpr GattUuid deviceInformation{0x180A};
    static constexpr GattUuid modelNumber{0x2A24};

    /// In which whatever is told twice, or against the contract, would have been told.
    static constexpr Nanoseconds while_ = std::chrono::seconds{6};

    std::unique_ptr<RadioWorld> world = makeRadioWorld();
    BluetoothCentral& central = world->central();
    Told& told = world->told;

    void TearDown() override { EXPECT_FALSE(told.somethingBeforeState); }

    /// The radio is on, and listens for what `wanted` says.
    void start(const Wanted& wanted = {.list = true}) {
        want(wanted);
        world->setPowered(true);
        ASSERT_TRUE(reaches(CentralState::poweredOn));
    }
    [[nodiscard]] bool reaches(CentralState state) {
        return world->until([&] { return !told.states.empty() && told.states.back() == state; });
    }

    /// A device that the radio has heard.
    Uuid heardDevice(const DeviceSpec& spec) {
        const Uuid id = world->add(spec);
        world->speak(id);
        EXPECT_TRUE(hears(id));
        return id;
    }
    /// Heard from now on.
    [[nodiscard]] bool hears(const Uuid& id) {
        const int before = told.heard(id).times;
        return world->until([&] { return told.heard(id).times > before; });
    }
    [[nodiscard]] bool tells(const Uuid& id, const Events& events) {
        return world->until([&] { return told.of(id).size() >= events.size(); }) &&
               told.of(id) == events;
    }
    /// A bonded device that is connected.
    Uuid connectedDevice(DeviceSpec spec = {}) {
        if (!spec.isBonded()) spec.identity = DeviceSpec::Identity::bonded;
        const Uuid id = world->add(spec);
        want({.connect = {id}});
        world->speak(id);
        connect(id);
        EXPECT_TRUE(tells(id, {"connected"}));
        EXPECT_EQ(central.peripheralState(id), PeripheralState::connected);
        return id;
    }

    template <typename Operation>
    void quietly(const Operation& operation) {
        const std::size_t before = told.calls();
        operation();
        EXPECT_EQ(told.calls(), before) << "told from within an operation";
    }
    void want(const Wanted& wanted) {
        quietly([&] { central.want(wanted); });
    }
    void connect(const Uuid& id) {
        quietly([&] { central.connect(id); });
    }
    void cancel(const Uuid& id) {
        quietly([&] { central.cancelConnection(id); });
    }
    void readRSSI(const Uuid& id) {
        quietly([&] { central.readRSSI(id); });
    }
    void discoverServices(const Uuid& id) {
        quietly([&] { central.discoverServices(id, deviceInformation); });
    }
    void discoverCharacteristics(const Uuid& id) {
        quietly([&] { central.discoverCharacteristics(id, deviceInformation, modelNumber); });
    }
    void readValue(const Uuid& id) {
        quietly([&] { central.readValue(id, modelNumber); });
    }
};

} // namespace wegslot
