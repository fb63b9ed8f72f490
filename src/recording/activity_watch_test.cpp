#include "recording/activity_watch.h"

#include "base/virtual_time.h"
#include "stage/staged_platform.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ActivityWatchTest : testing::Test {
    VirtualTime time{TimePoint{1000h}};
    StagedActivity activity{time};
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

/// Says what a test puts into it, and takes its time for that.
struct StatedActivity final : ActivityDetector {
    explicit StatedActivity(VirtualTime& clock) : time(clock) {}

    VirtualTime& time;
    Nanoseconds takes{0};
    Seconds idle = unknownIdle;
    [[nodiscard]] Seconds idleSeconds() override {
        time.advance(takes);
        return idle;
    }
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
    StatedActivity stated(time);
    ActivityWatch watched(stated, time);
    const TimePoint touched = time.now() - 100s;
    // It was right when it was asked, or as it came, or between.
    for (const auto& [takes, age] : {std::pair{90ms, 0ms}, std::pair{0ms, 0ms},
                                     std::pair{900ms, 900ms}, std::pair{900ms, 450ms}}) {
        stated.takes = takes;
        stated.idle = time.now() + takes - age - touched;
        EXPECT_TRUE(watched.changes().empty()) << takes.count() << " " << age.count();
        time.advance(ActivityWatch::interval);
    }
}

TEST_F(ActivityWatchTest, ATouchInAnAnswerThatTookLongIsToldWithTheNext) {
    StatedActivity stated(time);
    ActivityWatch watched(stated, time);
    time.advance(1s);
    const TimePoint touched = time.now();
    stated.takes = 2s;
    stated.idle = 1500ms; // it may have been before all this
    EXPECT_TRUE(watched.changes().empty());
    stated.takes = 0s;
    stated.idle = time.now() - touched;
    EXPECT_EQ(watched.changes().size(), 1U);
    EXPECT_TRUE(watched.changes().empty());
}

TEST_F(ActivityWatchTest, ATouchBeforeAQuestionThatWasNotAnsweredIsToldWithTheNext) {
    StatedActivity stated(time);
    ActivityWatch watched(stated, time);
    time.advance(1s);
    const TimePoint touched = time.now();
    for (int unanswered = 0; unanswered < 5; ++unanswered) {
        time.advance(ActivityWatch::interval);
        EXPECT_TRUE(watched.changes().empty());
    }
    stated.idle = time.now() - touched;
    EXPECT_EQ(watched.changes().size(), 1U);
}

TEST_F(ActivityWatchTest, AnAnswerThatWaversIsStillTheSameTouch) {
    StatedActivity stated(time);
    ActivityWatch watched(stated, time);
    time.advance(ActivityWatch::interval);
    stated.idle = 20ms;
    EXPECT_EQ(watched.changes().size(), 1U);
    time.advance(ActivityWatch::interval);
    stated.idle = 20ms + ActivityWatch::interval - InputWatch::jitter;
    EXPECT_TRUE(watched.changes().empty());
}

TEST_F(ActivityWatchTest, CameraAndMicrophoneAreToldWhenTheyChange) {
    activity.setCamera(true);
    activity.setMicrophone("Vergaderen");
    auto changes = watch.changes();
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_TRUE(std::get<trace::Camera>(changes[0]).value);
    EXPECT_EQ(std::get<trace::Microphone>(changes[1]).value, "Vergaderen");
    EXPECT_TRUE(watch.changes().empty());

    activity.setCamera(false);
    activity.setMicrophone("");
    changes = watch.changes();
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_FALSE(std::get<trace::Camera>(changes[0]).value);
    EXPECT_EQ(std::get<trace::Microphone>(changes[1]).value, "");

    activity.setMicrophone({});
    changes = watch.changes();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(std::get<trace::Microphone>(changes[0]).value, std::nullopt);
}
