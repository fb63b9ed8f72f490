// What a central reads of a device: the strength of its connection, and its model.
#include "tests/contract/radio_contract.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ValueContract : RadioContract {
    /// What was told of the device since it was connected.
    Events since(const Uuid& id) const {
        Events events = told.of(id);
        events.erase(events.begin());
        return events;
    }
    [[nodiscard]] bool answers(const Uuid& id, const Events& events) {
        return world->until([&] { return since(id).size() >= events.size(); }) &&
               since(id) == events;
    }
};

using Services = DeviceSpec::Services;

} // namespace

TEST_F(ValueContract, TheStrengthOfAConnectionIsTheLinksOwn) {
    start();
    const Uuid id = connectedDevice({.rssi = -70, .linkRssi = -44});
    readRSSI(id);
    EXPECT_TRUE(answers(id, {"rssi -44"}));
    readRSSI(id);
    EXPECT_TRUE(answers(id, {"rssi -44", "rssi -44"}));
}

TEST_F(ValueContract, WithoutAConnectionThereIsNoStrength) {
    start();
    const Uuid id = heardDevice({.identity = DeviceSpec::Identity::bonded});
    readRSSI(id);
    EXPECT_TRUE(tells(id, {"rssi -"}));
}

TEST_F(ValueContract, AfterALossThereIsNoStrength) {
    start();
    const Uuid id = connectedDevice();
    world->dropLink(id, RadioWorld::Loss::timeout);
    EXPECT_TRUE(answers(id, {"lost"}));
    readRSSI(id);
    EXPECT_TRUE(answers(id, {"lost", "rssi -"}));
}

TEST_F(ValueContract, TheModelIsReadStepByStep) {
    start();
    const Uuid id = connectedDevice({.model = "Phone16,2"});
    discoverServices(id);
    ASSERT_TRUE(world->until([&] { return since(id).size() == 1; }));
    EXPECT_NE((since(id)[0] + ' ').find(" 180A "), std::string::npos) << since(id)[0];
    discoverCharacteristics(id);
    ASSERT_TRUE(world->until([&] { return since(id).size() == 2; }));
    EXPECT_EQ(since(id)[1].find("characteristics of 180A "), 0U) << since(id)[1];
    EXPECT_NE((since(id)[1] + ' ').find(" 2A24 "), std::string::npos) << since(id)[1];
    readValue(id);
    ASSERT_TRUE(world->until([&] { return since(id).size() == 3; }));
    EXPECT_EQ(since(id)[2], "value of 2A24 Phone16,2");
    world->pass(while_);
    EXPECT_EQ(since(id).size(), 3U);
}

TEST_F(ValueContract, AMissingServiceIsAnEmptyList) {
    start();
    const Uuid id = connectedDevice({.services = Services::withoutModel});
    discoverServices(id);
    EXPECT_TRUE(answers(id, {"services"}));
}

TEST_F(ValueContract, AMissingCharacteristicIsAnEmptyListAndHasNoValue) {
    start();
    const Uuid id = connectedDevice({.services = Services::withoutModel});
    discoverCharacteristics(id);
    EXPECT_TRUE(answers(id, {"characteristics of 180A"}));
    readValue(id);
    EXPECT_TRUE(answers(id, {"characteristics of 180A", "value of 2A24 -"}));
}

TEST_F(ValueContract, AMuteDeviceIsAwaitedUntilItIsCancelled) {
    start();
    const Uuid id = connectedDevice({.services = Services::mute});
    discoverServices(id);
    world->pass(while_);
    EXPECT_EQ(since(id), Events{});
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connected);
    cancel(id);
    EXPECT_TRUE(answers(id, {"lost"}));
    world->pass(while_);
    EXPECT_EQ(since(id), Events{"lost"});
}

TEST_F(ValueContract, ALossLeavesAQuestionUnanswered) {
    start();
    const Uuid id = connectedDevice({.services = Services::mute});
    discoverServices(id);
    world->dropLink(id, RadioWorld::Loss::byDevice);
    EXPECT_TRUE(answers(id, {"lost"}));
    world->pass(while_);
    EXPECT_EQ(since(id), Events{"lost"});
}
