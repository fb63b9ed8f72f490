#include "history/keeper.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

/// Counts how often it is asked for idle time, and may take long to answer.
class SlowActivity final : public ActivityDetector {
public:
    explicit SlowActivity(VirtualTime& time) : time_(time) {}

    [[nodiscard]] Seconds idleSeconds() override {
        ++asked;
        time_.sleep(takes);
        return unknownIdle;
    }
    [[nodiscard]] bool cameraInUse() override { return false; }
    [[nodiscard]] std::optional<std::string> microphoneUser() override { return std::nullopt; }

    int asked = 0;
    Nanoseconds takes{0};

private:
    VirtualTime& time_;
};

struct NoStore final : HistoryStore {
    void keep(Minute /*minute*/) override {}
};

struct KeeperTest : testing::Test {
    World world;
    SlowActivity service{world.time};
    NotedActivity activity{service};
    NoStore store;
    std::optional<Keeper> keeper;

    void SetUp() override {
        world.run({keyNamed("Telefoon", 1)});
        keeper.emplace(Keeper::Surroundings{.settings = world.settings(),
                                            .scanner = world.scanner(),
                                            .monitor = world.monitor(),
                                            .clock = world.time,
                                            .session = world.session,
                                            .activity = activity,
                                            .rowOf = [](const Uuid&) { return 1; },
                                            .store = store});
    }

    void TearDown() override {
        keeper.reset();
        world.model.reset();
    }
};

} // namespace

TEST_F(KeeperTest, IdleTimeIsAskedOnceAJudgementWhileItKeeps) {
    world.pass(5s);
    EXPECT_EQ(service.asked, 0);
    keeper->setKeeping(true);
    world.pass(10s);
    EXPECT_EQ(service.asked, 10);
    keeper->setKeeping(false);
    world.pass(5s);
    EXPECT_EQ(service.asked, 10);
}

TEST_F(KeeperTest, AServiceThatIsSlowToAnswerIsLeftAloneForAMinute) {
    keeper->setKeeping(true);
    service.takes = 49ms;
    world.pass(2s);
    EXPECT_EQ(service.asked, 2);
    service.takes = 50ms;
    world.pass(30s);
    EXPECT_EQ(service.asked, 3);
    service.takes = 0ms;
    world.pass(40s);
    EXPECT_GT(service.asked, 5);
}
