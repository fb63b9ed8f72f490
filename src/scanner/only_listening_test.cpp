#include "tests/support/world.h"

using namespace wegslot;

namespace {

/// The core as one runs it that looks on beside another.
struct OnlyListening : testing::Test {
    World world;

    void run(const KeyDevice& key) {
        auto surroundings = world.surroundings();
        surroundings.connecting = Connecting::never;
        world.model.emplace(std::move(surroundings));
        world.settings().keys.set({key});
        static_cast<void>(world.monitor());
        world.central.know(key.id);
        world.central.setState(CentralState::poweredOn);
    }

    void keepHearing(unsigned number) {
        for (int second = 0; second < 30; ++second) {
            world.hearApple(number, -50);
            world.pass(std::chrono::seconds{1});
        }
    }
};

} // namespace

TEST_F(OnlyListening, AKeyThatWouldBeConnectedIsOnlyHeard) {
    run(keyNamed("iPhone", 1));
    keepHearing(1);
    EXPECT_EQ(world.takeCalls(), std::vector<std::string>{"scan"});
    EXPECT_EQ(world.phaseName(), "present");
}

TEST_F(OnlyListening, NobodyIsConnectedToBeIdentified) {
    run(keyNamed("iPhone", 1));
    world.scanner().setDiscoveryActive(true);
    keepHearing(2);
    EXPECT_EQ(world.takeCalls(), std::vector<std::string>{"scan"});
}

TEST_F(OnlyListening, WhatIsToBeConnectedIsWantedAsHeard) {
    run(keyNamed("iPhone", 1));
    world.scanner().setDiscoveryActive(true);
    EXPECT_EQ(world.central.wanted(), (Wanted{.list = true, .connect = {}, .hear = {numbered(1)}}));
}

TEST_F(OnlyListening, WhoConnectsAllTheSameIsLeftAlone) {
    run(keyNamed("iPhone", 1));
    keepHearing(1);
    static_cast<void>(world.takeCalls());
    world.central.connected(numbered(1));
    world.central.disconnected(numbered(1), "weg");
    world.central.connectFailed(numbered(1));
    world.pass(std::chrono::seconds{10});
    EXPECT_TRUE(world.takeCalls().empty());
}
