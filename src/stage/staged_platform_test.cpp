#include "stage/staged_platform.h"

#include "base/virtual_time.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

TEST(StagedSession, TellsWhoListensAndNobodyElse) {
    StagedSession session;
    std::vector<SessionEvent> told;
    auto listening = session.observe([&](SessionEvent event) { told.push_back(event); });
    session.tell(SessionEvent::locked);
    session.tell(SessionEvent::locked); // said twice is told twice
    listening.reset();
    session.tell(SessionEvent::unlocked);
    EXPECT_EQ(told, (std::vector{SessionEvent::locked, SessionEvent::locked}));
}

TEST(StagedActivity, IdleTimeGrowsFromTheLastTouch) {
    VirtualTime time{TimePoint{1000h}};
    StagedActivity activity(time);
    EXPECT_EQ(activity.idleSeconds(), ActivityDetector::unknownIdle);
    activity.touch();
    EXPECT_EQ(activity.idleSeconds(), Seconds{0});
    time.advance(2500ms);
    EXPECT_EQ(activity.idleSeconds(), Seconds{2.5});
    time.sleep(1h); // nobody types while the machine sleeps
    EXPECT_EQ(activity.idleSeconds(), Seconds{3602.5});
}

TEST(StagedHud, ReportsEachPanelAndOnlyTheEndOfOneThatShowed) {
    std::vector<std::string> shown;
    StagedHud hud([&](const Warning* warning) {
        shown.push_back(warning == nullptr ? "-" : warning->message);
    });
    hud.hide();
    hud.show(TimePoint{1s}, Seconds{5}, "een", [] {});
    hud.show(TimePoint{2s}, Seconds{5}, "twee", [] {});
    hud.hide();
    hud.hide();
    EXPECT_EQ(shown, (std::vector<std::string>{"een", "twee", "-"}));
}

TEST(StagedLock, ReportsEachRequest) {
    int requests = 0;
    StagedLock lock([&] { ++requests; });
    lock.lock();
    lock.lock();
    EXPECT_EQ(requests, 2);
}
