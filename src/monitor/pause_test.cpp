#include "monitor/pause.h"

#include "tests/support/world.h"

#include <limits>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct PauseReasonTest : testing::Test {
    World world;
    Settings settings{world.store};

    std::optional<PauseReason> reason() { return pauseReason(settings, world.activity); }
};

} // namespace

TEST_F(PauseReasonTest, TheUserIsActiveForLessThanTenSecondsAfterATouch) {
    world.activity.touch();
    world.pass(9900ms);
    EXPECT_EQ(reason(), PauseReason{pause::Active{}});
    world.pass(100ms - 1ns);
    EXPECT_EQ(reason(), PauseReason{pause::Active{}});
    world.pass(1ns);
    EXPECT_EQ(reason(), std::nullopt);
}

TEST_F(PauseReasonTest, AnUnknownIdleTimeIsNeverActive) { EXPECT_EQ(reason(), std::nullopt); }

TEST_F(PauseReasonTest, AMeetingIsNamed) {
    world.activity.setMicrophone("Vergaderapp");
    EXPECT_EQ(reason(), PauseReason{pause::Microphone{"Vergaderapp"}});
    world.activity.setCamera(true);
    EXPECT_EQ(reason(), PauseReason{pause::Camera{}}); // the camera wins
    world.activity.touch();
    EXPECT_EQ(reason(), PauseReason{pause::Active{}}); // hands win over both
}

TEST_F(PauseReasonTest, ASwitchedOffReasonIsNotGiven) {
    world.activity.touch();
    world.activity.setCamera(true);
    settings.pauseWhileActive.set(false);
    EXPECT_EQ(reason(), PauseReason{pause::Camera{}});
    settings.pauseDuringMeetings.set(false);
    EXPECT_EQ(reason(), std::nullopt);
    settings.pauseWhileActive.set(true);
    EXPECT_EQ(reason(), PauseReason{pause::Active{}});
}

TEST_F(PauseReasonTest, HasATextForThePhase) {
    EXPECT_EQ(text(pause::Active{}), "Je gebruikt je Mac");
    EXPECT_EQ(text(pause::Camera{}), "Camera is in gebruik");
    EXPECT_EQ(text(pause::Microphone{ActivityDetector::unnamedApplication}),
              "Microfoon in gebruik door een app");
    EXPECT_EQ(text(pause::Microphone{"Vergaderapp"}), "Microfoon in gebruik door Vergaderapp");
}

TEST(Snooze, AManualOneHoldsUntilItsTimeWhoeverIsNear) {
    Snooze snooze;
    snooze.startManual(TimePoint{100s});
    EXPECT_TRUE(snooze.isManual().get());
    EXPECT_TRUE(snooze.holds(TimePoint{100s - 1ns}, false));
    EXPECT_FALSE(snooze.holds(TimePoint{100s}, true));
    EXPECT_FALSE(snooze.isManual().get());
    EXPECT_EQ(snooze.until(), std::nullopt);
}

TEST(Snooze, AnAutomaticOneEndsWhenTheKeysAreNear) {
    Snooze snooze;
    snooze.startAutomatic(TimePoint{100s});
    EXPECT_TRUE(snooze.holds(TimePoint{1s}, true));
    EXPECT_FALSE(snooze.holds(TimePoint{1s}, false));
    EXPECT_FALSE(snooze.holds(TimePoint{1s}, true)); // it does not come back
}

TEST(Snooze, AnUnlockEndsOnlyAnAutomaticOne) {
    Snooze snooze;
    snooze.startAutomatic(TimePoint{100s});
    snooze.endAutomatic();
    EXPECT_EQ(snooze.until(), std::nullopt);
    snooze.startManual(TimePoint{100s});
    snooze.endAutomatic();
    EXPECT_EQ(snooze.until(), TimePoint{100s});
}

TEST(Snooze, AManualOneReplacesAnAutomaticOne) {
    Snooze snooze;
    snooze.startAutomatic(TimePoint{100s});
    snooze.startManual(TimePoint{200s});
    EXPECT_TRUE(snooze.isManual().get());
    EXPECT_TRUE(snooze.holds(TimePoint{150s}, false));
}
