// Whatever goes away, at whatever moment: nothing of it is called afterwards, nothing stays
// armed, nothing shows.
#include "tests/properties/life.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

// Settings, scanner and monitor one by one, to end one of them alone.
class Pieces : public testing::Test {
protected:
    Pieces() {
        settings.keys.set({keyNamed("iPhone", 1), keyNamed("Horloge", 2)});
        settings.rule.set(LockRule::anyAway);
        scanner.emplace(stage.central, stage.time, stage.time);
        armedByScanner = stage.time.pending();
    }

    void makeMonitor() {
        monitor.emplace(settings, *scanner, stage.surroundings().platform,
                        stage.surroundings().makeHud());
        stage.central.setState(CentralState::poweredOn);
    }

    /// Both keys are heard for `seconds`, the first with `strength`.
    void hear(int strength, int seconds) {
        for (int i = 0; i < 2 * seconds; ++i) {
            stage.central.advertise({.id = numbered(1), .rssi = strength});
            stage.central.advertise({.id = numbered(2), .rssi = -50});
            stage.time.advance(500ms);
        }
    }

    /// All that a monitor listens to.
    void everythingHappens() {
        settings.keys.set({keyNamed("Tag", 3)});
        settings.showOtherDevices.set(true);
        settings.enabled.set(false);
        settings.enabled.set(true);
        stage.session.tell(SessionEvent::locked);
        stage.session.tell(SessionEvent::unlocked);
        if (stage.cancel) stage.cancel();
        hear(-50, 3);
        stage.time.advance(1h);
    }

    void endMonitor() {
        monitor.reset();
        stage.effects.clear();
        EXPECT_EQ(stage.panels, 0);
        EXPECT_FALSE(stage.panelShows);
    }

    Stage stage{World::start};
    MemoryStore store;
    Settings settings{store};
    std::optional<Scanner> scanner;
    std::optional<Monitor> monitor;
    std::size_t armedByScanner = 0;
};

} // namespace

TEST(Endings, AnApplicationThatEndsAtAnyMomentLeavesNothingBehind) {
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Life life(seed);
        Dice dice(seed);
        for (auto steps = dice.below(500); steps > 0 && life.step(); --steps) {
        }
        if (life.faults().empty()) life.end();
        ASSERT_TRUE(life.faults().empty()) << "seed " << seed << ": " << life.faults().front();
    }
}

TEST_F(Pieces, AMonitorThatEndsAtAnyMomentIsNotCalledAgain) {
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        Dice dice(seed);
        settings.keys.set({keyNamed("iPhone", 1), keyNamed("Horloge", 2)});
        settings.showOtherDevices.set(false);
        makeMonitor();
        for (auto rounds = dice.below(12); rounds > 0; --rounds) {
            hear(dice.pick({-50, -50, -95}), dice.between(1, 9));
            stage.time.advance(Nanoseconds{dice.below(2'000'000'000)});
            if (dice.chance(10)) monitor->lockNow();
            if (dice.chance(10)) monitor->pause(Seconds{30});
        }
        endMonitor();
        everythingHappens();
        ASSERT_TRUE(stage.effects.empty()) << "seed " << seed << ": " << text(stage.effects[0]);
        ASSERT_TRUE(scanner->watchedIDs().contains(numbered(1))); // nobody told it of the new list
        ASSERT_FALSE(scanner->includeOtherDevices());
    }
}

TEST_F(Pieces, TheTickIsNotArmedAnyMore) {
    makeMonitor();
    EXPECT_EQ(stage.time.pending(), armedByScanner + 1);
    endMonitor();
    EXPECT_EQ(stage.time.pending(), armedByScanner);
}

TEST_F(Pieces, APanelThatShowsGoesWithItsMonitorAndItsButtonDoesNothingThen) {
    makeMonitor();
    hear(-50, 3);
    hear(-95, 11);
    ASSERT_TRUE(stage.panelShows);
    endMonitor();
    ASSERT_TRUE(stage.cancel);
    stage.cancel();
    EXPECT_TRUE(stage.effects.empty());
}

TEST_F(Pieces, AScannerThatEndsWithAConnectionToRenewLeavesNothingArmed) {
    makeMonitor();
    hear(-50, 2);
    settings.keys.set({keyNamed("iPhone", 1)}); // known by now, so it is connected
    stage.central.connected(numbered(1));
    stage.central.disconnected(numbered(1));
    scanner->setDiscoveryActive(true);
    EXPECT_GT(stage.time.pending(), armedByScanner + 1);
    monitor.reset();
    scanner.reset();
    EXPECT_EQ(stage.time.pending(), 0U);
    stage.central.connected(numbered(1));
    stage.central.advertise({.id = numbered(1), .rssi = -50});
    stage.time.advance(1h);
}
