#include "history/hindsight.h"

#include "tests/support/lived_history.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;

/// A life by hand with one key at -75 dBm, which is heard 7 ms after each judgement.
struct HindsightTest : testing::Test {
    LivedHistory life{1};
    World& world = life.world;

    void SetUp() override { life.begin(1); }

    /// "23 locked judgement": the second in which a phase is entered with this change, and why.
    [[nodiscard]] Lines imagined(const Change& change) {
        const auto past = stretches(life.kept());
        Lines lines;
        for (const Outcome& outcome :
             judgedAnew(past.at(0), 0, past.at(0).instants.size(), &change)) {
            const auto second =
                std::chrono::floor<std::chrono::seconds>(outcome.at - World::start).count();
            lines.push_back(std::to_string(second) + " " + std::string(name(outcome.phase)) +
                            (outcome.cause == PhaseCause::screen ? " by the screen" : ""));
        }
        return lines;
    }
};

} // namespace

TEST_F(HindsightTest, ALockThatWasNotLivedIsConfirmedAndUndoneWhenAKeyIsNear) {
    world.settings().awayDelay.set(60s);
    world.keepHearing(1, -55, 10);
    world.keepHearing(1, -90, 20);
    world.keepHearing(1, -55, 10);
    EXPECT_EQ(imagined({.setting = "awayDelay", .value = 2.0}),
              (Lines{"1 present", "13 leaving", "15 warning", "20 locked",
                     "33 waitingForReturn by the screen", "34 present"}));
}

TEST_F(HindsightTest, ALockThatWasNotLivedIsUndoneByInput) {
    world.settings().awayDelay.set(60s);
    world.keepHearing(1, -55, 10);
    world.keepHearing(1, -90, 15);
    world.activity.touch();
    world.keepHearing(1, -90, 5);
    world.keepHearing(1, -55, 10);
    EXPECT_EQ(imagined({.setting = "awayDelay", .value = 2.0}),
              (Lines{"1 present", "13 leaving", "15 warning", "20 locked",
                     "25 waitingForReturn by the screen", "33 present"}));
}

TEST_F(HindsightTest, ALockThatWasLivedAndIsNotAskedForNowIsNotThereNorIsItsUnlock) {
    world.keepHearing(1, -55, 10);
    world.keepHearing(1, -90, 14);
    world.session.tell(SessionEvent::locked);
    world.keepHearing(1, -90, 6);
    world.session.tell(SessionEvent::unlocked);
    world.keepHearing(1, -55, 10);
    EXPECT_EQ(imagined({.setting = "keys", .value = -95.0, .key = 101}), Lines{"1 present"});
}

TEST_F(HindsightTest, AScreenThatSomebodyElseLockedIsLocked) {
    world.keepHearing(1, -55, 10);
    world.session.tell(SessionEvent::locked);
    world.keepHearing(1, -55, 5);
    world.session.tell(SessionEvent::unlocked);
    world.keepHearing(1, -55, 5);
    EXPECT_EQ(imagined({.setting = "keys", .value = -95.0, .key = 101}),
              (Lines{"1 present", "10 locked by the screen", "15 waitingForReturn by the screen",
                     "16 present"}));
}
