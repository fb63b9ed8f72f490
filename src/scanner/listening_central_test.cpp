#include "scanner/listening_central.h"

#include "tests/support/world.h"

using namespace wegslot;

namespace {

struct ListeningCentralTest : testing::Test {
    World world;
    ListeningCentral listening{world.central};
    std::optional<AppModel> model;

    /// Runs the core on the listening central with this key.
    void run(const KeyDevice& key) {
        auto surroundings = world.surroundings();
        model.emplace(AppModel::Surroundings{surroundings.preferences, listening,
                                             surroundings.platform, surroundings.makeHud});
        model->settings().keys.set({key});
        static_cast<void>(model->monitor());
        world.central.setState(CentralState::poweredOn);
    }
};

} // namespace

TEST_F(ListeningCentralTest, AKeyThatWouldBeConnectedIsOnlyHeard) {
    run(keyNamed("iPhone", 1));
    for (int second = 0; second < 30; ++second) {
        world.hearApple(1, -50);
        world.pass(std::chrono::seconds{1});
    }
    const auto calls = world.takeCalls();
    EXPECT_EQ(std::ranges::count(calls, "connect 1"), 0);
    EXPECT_EQ(std::ranges::count(calls, "readRSSI 1"), 0);
    EXPECT_EQ(std::ranges::count(calls, "cancelConnection 1"), 0);
    EXPECT_EQ(name(model->monitor().phase().get()), "present");
}

TEST_F(ListeningCentralTest, NobodyIsConnectedToBeIdentified) {
    run(keyNamed("iPhone", 1));
    model->scanner().setDiscoveryActive(true);
    for (int second = 0; second < 30; ++second) {
        world.hearApple(2, -50);
        world.pass(std::chrono::seconds{1});
    }
    EXPECT_EQ(std::ranges::count(world.takeCalls(), "connect 2"), 0);
}

TEST_F(ListeningCentralTest, WhatIsToBeConnectedIsWantedAsHeard) {
    Wanted wanted;
    struct Told final : BluetoothCentral {
        Wanted& wanted;
        explicit Told(Wanted& told) : wanted(told) {}
        void setDelegate(CentralDelegate*) override {}
        [[nodiscard]] CentralState state() const override { return CentralState::poweredOn; }
        [[nodiscard]] CentralAuthorization authorization() const override {
            return CentralAuthorization::allowedAlways;
        }
        void scan() override {}
        void want(const Wanted& told) override { wanted = told; }
        void catchUp() override {}
        [[nodiscard]] bool changesAddress(const Uuid&) const override { return true; }
        [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>&) override {
            return {numbered(1)};
        }
        [[nodiscard]] PeripheralState peripheralState(const Uuid&) const override {
            return PeripheralState::connected;
        }
        [[nodiscard]] std::optional<std::string> peripheralName(const Uuid&) const override {
            return "iPhone";
        }
        void connect(const Uuid&) override { ADD_FAILURE(); }
        void cancelConnection(const Uuid&) override { ADD_FAILURE(); }
        void readRSSI(const Uuid&) override { ADD_FAILURE(); }
        void discoverServices(const Uuid&, GattUuid) override { ADD_FAILURE(); }
        void discoverCharacteristics(const Uuid&, GattUuid, GattUuid) override { ADD_FAILURE(); }
        void readValue(const Uuid&, GattUuid) override { ADD_FAILURE(); }
    } told(wanted);
    ListeningCentral central(told);
    central.want({.list = true, .connect = {numbered(1)}, .hear = {numbered(2)}});
    EXPECT_EQ(wanted, (Wanted{.list = true, .connect = {}, .hear = {numbered(1), numbered(2)}}));
    central.connect(numbered(1));
    central.cancelConnection(numbered(1));
    central.readRSSI(numbered(1));
    EXPECT_TRUE(central.retrieve({numbered(1)}).empty());
    EXPECT_EQ(central.peripheralState(numbered(1)), PeripheralState::disconnected);
    EXPECT_EQ(central.peripheralName(numbered(1)), "iPhone");
    EXPECT_TRUE(central.changesAddress(numbered(1)));
    EXPECT_EQ(central.state(), CentralState::poweredOn);
}
