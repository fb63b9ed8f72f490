// What the monitor asks about its user, and when: each question may cost a service's time.

#include "monitor/pause.h"
#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// Answers as it is told, and notes what it was asked.
struct AskedActivity final : ActivityDetector {
    Seconds idle = unknownIdle;
    bool camera = false;
    std::optional<std::string> microphone;
    std::vector<std::string> asked;

    Seconds idleSeconds() override {
        asked.emplace_back("idle");
        return idle;
    }
    bool cameraInUse() override {
        asked.emplace_back("camera");
        return camera;
    }
    std::optional<std::string> microphoneUser() override {
        asked.emplace_back("microphone");
        return microphone;
    }
    std::vector<std::string> take() { return std::exchange(asked, {}); }
};

using Questions = std::vector<std::string>;

struct ActivityAskedTest : testing::Test {
    World world;
    AskedActivity activity;
    Settings settings{world.store};

    [[nodiscard]] Questions questions() {
        static_cast<void>(pauseReason(settings, activity));
        return activity.take();
    }
};

} // namespace

TEST_F(ActivityAskedTest, HandsThenCameraThenMicrophoneAndNoneAfterTheFirstThatHolds) {
    EXPECT_EQ(questions(), (Questions{"idle", "camera", "microphone"}));
    activity.microphone = "Vergaderapp";
    EXPECT_EQ(questions(), (Questions{"idle", "camera", "microphone"}));
    activity.camera = true;
    EXPECT_EQ(questions(), (Questions{"idle", "camera"}));
    activity.idle = 1s;
    EXPECT_EQ(questions(), Questions{"idle"});
}

TEST_F(ActivityAskedTest, WhatDoesNotCountIsNotAskedFor) {
    settings.pauseWhileActive.set(false);
    EXPECT_EQ(questions(), (Questions{"camera", "microphone"}));
    settings.pauseDuringMeetings.set(false);
    EXPECT_EQ(questions(), Questions{});
    settings.pauseWhileActive.set(true);
    EXPECT_EQ(questions(), Questions{"idle"});
}

TEST_F(ActivityAskedTest, OnlyWhileTheKeysAreAwayAndThenOnceASecond) {
    AppModel model({world.store,
                    world.central,
                    {world.time, world.time, world.session, activity, world.platform.lock},
                    [] { return std::make_unique<StagedHud>([](const Warning*) {}); }});
    model.settings().keys.set({keyNamed("iPhone", 1)});
    static_cast<void>(model.monitor());
    world.central.setState(CentralState::poweredOn);
    const auto phase = [&] { return std::string(name(model.monitor().phase().get())); };
    world.pass(60s); // waiting for the key
    EXPECT_EQ(activity.take(), Questions{});
    world.keepHearing(1, -50, 60);
    ASSERT_EQ(phase(), "present");
    EXPECT_EQ(activity.take(), Questions{});
    activity.idle = 1s; // hands on it
    while (phase() != "paused") {
        ASSERT_EQ(activity.take(), Questions{}) << phase();
        world.pass(1s);
    }
    EXPECT_EQ(activity.take(), Questions{"idle"});
    world.pass(5s);
    EXPECT_EQ(activity.take(), Questions(5, "idle"));
    world.hear(1, -50);
    world.pass(1s);
    ASSERT_EQ(phase(), "present");
    activity.take();
    world.keepHearing(1, -50, 5);
    EXPECT_EQ(activity.take(), Questions{});
}
