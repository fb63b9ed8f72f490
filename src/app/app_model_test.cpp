#include "app/app_model.h"

#include "tests/support/world.h"

using namespace wegslot;

TEST(AppModel, TheMonitorIsMadeOnTheFirstReadAndKept) {
    World world;
    world.model.emplace(world.surroundings());
    EXPECT_TRUE(world.log.messages.empty());
    Monitor& monitor = world.model->monitor();
    EXPECT_EQ(world.log.take(), std::vector<std::string>{"Wegslot gestart met 0 sleutel(s)"});
    EXPECT_EQ(&world.model->monitor(), &monitor);
    EXPECT_TRUE(world.log.messages.empty());
}

TEST(AppModel, TheSignalPollIsArmedBeforeTheTick) {
    World world;
    world.run({keyNamed("iPhone", 1)});
    world.hearApple(1, -50);
    world.settings().keys.set({}); // so that setting them again connects the known key
    world.settings().keys.set({keyNamed("iPhone", 1)});
    world.central.connected(numbered(1));
    static_cast<void>(world.takeCalls());
    std::vector<std::string> order;
    world.central.onCall(
        [&](std::string_view operation, const Uuid*) { order.emplace_back(operation); });
    const auto subscription =
        world.scanner().snapshot().onChange([&](const auto&) { order.emplace_back("tick"); });
    world.pass(std::chrono::seconds{2});
    EXPECT_EQ(order, (std::vector<std::string>{"tick", "readRSSI", "tick"}));
}
