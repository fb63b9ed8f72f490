#include "core/app_model.h"

#include "tests/support/fake_updates.h"
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

namespace {

/// With a server that offers build 2, and no image there.
struct UpdatingWorld : World {
    UpdatingWorld() {
        http.serve("https://updates.example/feed.json",
                   R"({"version":"2","build":2,"url":"x","sha256":"","signature":""})");
    }

    [[nodiscard]] AppModel::Surroundings updating(std::int64_t build, bool now) {
        auto around = surroundings();
        around.bundle = {
            .build = build, .feed = "https://updates.example/feed.json", .key = PublicKey{}};
        around.updates.emplace(Updater::World{http, background, installer, installer});
        around.updateNow = now;
        return around;
    }

    FakeHttp http{time};
    FakeBackground background{time};
    FakeInstaller installer;
};

} // namespace

TEST(AppModel, ChecksForUpdatesOnItsOwnTime) {
    UpdatingWorld world;
    world.model.emplace(world.updating(1, false));
    world.time.advance(std::chrono::seconds{9});
    EXPECT_TRUE(world.http.requests.empty());
    world.time.advance(std::chrono::seconds{3});
    EXPECT_EQ(world.log.messages, std::vector<std::string>{"Update beschikbaar: 2 (2)"});
    EXPECT_EQ(world.http.requests.size(), 1U);
}

TEST(AppModel, UpdateNowChecksAtOnceAndInstallsWhatIsOffered) {
    UpdatingWorld world;
    world.model.emplace(world.updating(1, true));
    EXPECT_TRUE(world.http.requests.empty());
    world.time.advance(std::chrono::seconds{5});
    EXPECT_EQ(world.log.messages,
              (std::vector<std::string>{"Update beschikbaar: 2 (2)", "Update 2 wordt gedownload",
                                        "Update mislukt: Download mislukt"}));
}

TEST(AppModel, UpdateNowInstallsNothingWhereNothingIsNewer) {
    UpdatingWorld world;
    world.model.emplace(world.updating(2, true));
    world.time.advance(std::chrono::seconds{5});
    EXPECT_EQ(world.model->updater().state().get(), Updater::State(update_state::UpToDate{}));
    EXPECT_EQ(world.http.requests.size(), 1U);
    EXPECT_TRUE(world.log.messages.empty());
}

TEST(AppModel, WithoutAWorldForUpdatesThereAreNone) {
    World world;
    auto around = world.surroundings();
    around.bundle = {.feed = "https://updates.example/feed.json", .key = PublicKey{}};
    world.model.emplace(std::move(around));
    EXPECT_FALSE(world.model->updater().isConfigured());
}
