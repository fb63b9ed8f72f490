#include "platform/lock_controller.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

enum class Answer { accepts, refuses, refusesLater };

class FakeWay final : public ScreenLock {
public:
    explicit FakeWay(Answer answer) : answer_(answer) {}

    void request(std::function<void()> refused) override {
        ++requests;
        if (answer_ == Answer::refuses) refused();
        if (answer_ == Answer::refusesLater) pending = std::move(refused);
    }

    int requests = 0;
    std::function<void()> pending;

private:
    Answer answer_;
};

} // namespace

TEST(LockController, WhileTheFirstWayWorksTheSecondIsNeverAsked) {
    FakeWay first{Answer::accepts};
    FakeWay second{Answer::accepts};
    LockController controller{{&first, &second}};
    controller.lock();
    controller.lock();
    EXPECT_EQ(first.requests, 2);
    EXPECT_EQ(second.requests, 0);
}

TEST(LockController, ARefusalAsksTheSecondWayExactlyOnce) {
    FakeWay first{Answer::refuses};
    FakeWay second{Answer::accepts};
    LockController controller{{&first, &second}};
    controller.lock();
    EXPECT_EQ(first.requests, 1);
    EXPECT_EQ(second.requests, 1);
}

TEST(LockController, ARefusalMayComeLater) {
    FakeWay first{Answer::refusesLater};
    FakeWay second{Answer::accepts};
    LockController controller{{&first, &second}};
    controller.lock();
    EXPECT_EQ(second.requests, 0);
    first.pending();
    EXPECT_EQ(second.requests, 1);
}

TEST(LockController, ARefusalAfterTheControllerHasGoneAsksNobody) {
    FakeWay first{Answer::refusesLater};
    FakeWay second{Answer::accepts};
    {
        LockController controller{{&first, &second}};
        controller.lock();
    }
    first.pending();
    EXPECT_EQ(second.requests, 0);
}

TEST(LockController, WhenEveryWayRefusesItStaysSilent) {
    FakeWay first{Answer::refuses};
    FakeWay second{Answer::refuses};
    LockController controller{{&first, &second}};
    controller.lock();
    EXPECT_EQ(first.requests, 1);
    EXPECT_EQ(second.requests, 1);
    LockController{{}}.lock();
}
