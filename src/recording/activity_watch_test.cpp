#include "recording/activity_watch.h"

#include "base/virtual_time.h"
#include "replay/replayed_platform.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ActivityWatchTest : testing::Test {
    VirtualTime time{TimePoint{1000h}};
    ReplayedActivity activity{time};
    ActivityWatch watch{activity, time};

    [[nodiscard]] int touches() {
        int count = 0;
        for (const auto& event : watch.changes())
            count += std::holds_alternative<trace::Input>(event) ? 1 : 0;
        return count;
    }

    /// How many touches are told in the next `duration`.
    [[nodiscard]] int touchesIn(Nanoseconds duration) {
        int count = 0;
        for (; duration > 0s; duration -= ActivityWatch::interval) {
            time.advance(ActivityWatch::interval);
            count += touches();
        }
        return count;
    }
};

/// Says what a test puts into it.
struct StatedActivity final : ActivityDetector {
    Seconds idle = unknownIdle;
    [[nodiscard]] Seconds idleSeconds() override { return idle; }
    [[nodiscard]] bool cameraInUse() override { return false; }
    [[nodiscard]] std::optional<std::string> microphoneUser() override { return {}; }
};

} // namespace

TEST_F(ActivityWatchTest, NothingIsToldWhileNothingHappens) {
    EXPECT_TRUE(watch.changes().empty());
    EXPECT_EQ(touchesIn(1min), 0);
}

TEST_F(ActivityWatchTest, ATouchIsToldOnceAndAtTheNextQuestion) {
    time.advance(150ms);
    activity.touch();
    time.advance(50ms);
    EXPECT_EQ(touches(), 1);
    EXPECT_EQ(touchesIn(1min), 0);
}

TEST_F(ActivityWatchTest, TouchesBetweenTwoQuestionsAreOne) {
    activity.touch();
    time.advance(100ms);
    activity.touch();
    time.advance(100ms);
    EXPECT_EQ(touches(), 1);
    activity.touch();
    EXPECT_EQ(touchesIn(1s), 1);
}

TEST_F(ActivityWatchTest, WhoKeepsTypingIsToldOfAtEachQuestion) {
    for (int i = 0; i < 10; ++i) {
        time.advance(ActivityWatch::interval);
        activity.touch();
        EXPECT_EQ(touches(), 1);
    }
}

TEST_F(ActivityWatchTest, ATouchBeforeTheBeginningIsNotTold) {
    activity.touch();
    time.advance(5s);
    ActivityWatch later(activity, time);
    EXPECT_TRUE(later.changes().empty());
}

TEST_F(ActivityWatchTest, ATouchDuringAPauseOfTheQuestionsIsToldAfterIt) {
    time.advance(1s);
    activity.touch();
    time.advance(30s);
    EXPECT_EQ(touches(), 1);
}

TEST_F(ActivityWatchTest, AnAnswerThatComesLateMakesNoNewTouch) {
    StatedActivity stated;
    ActivityWatch watched(stated, time);
    stated.idle = 100s;
    EXPECT_TRUE(watched.changes().empty());
    // Each answer puts the last touch a little later than the one before.
    for (int i = 1; i <= 9; ++i) {
        time.advance(ActivityWatch::interval);
        stated.idle = 100s + i * ActivityWatch::interval - i * 10ms;
        EXPECT_TRUE(watched.changes().empty()) << i;
    }
}

TEST_F(ActivityWatchTest, AnAnswerThatWaversIsStillTheSameTouch) {
    StatedActivity stated;
    ActivityWatch watched(stated, time);
    time.advance(ActivityWatch::interval);
    stated.idle = 20ms;
    EXPECT_EQ(watched.changes().size(), 1U);
    time.advance(ActivityWatch::interval);
    stated.idle = 20ms + ActivityWatch::interval - ActivityWatch::jitter;
    EXPECT_TRUE(watched.changes().empty());
}

TEST_F(ActivityWatchTest, CameraAndMicrophoneAreToldWhenTheyChange) {
    activity.setCamera(true);
    activity.setMicrophone("Vergaderen");
    auto changes = watch.changes();
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_TRUE(std::get<trace::Camera>(changes[0]).inUse);
    EXPECT_EQ(std::get<trace::Microphone>(changes[1]).user, "Vergaderen");
    EXPECT_TRUE(watch.changes().empty());

    activity.setCamera(false);
    activity.setMicrophone("");
    changes = watch.changes();
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_FALSE(std::get<trace::Camera>(changes[0]).inUse);
    EXPECT_EQ(std::get<trace::Microphone>(changes[1]).user, "");

    activity.setMicrophone({});
    changes = watch.changes();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(std::get<trace::Microphone>(changes[0]).user, std::nullopt);
}
