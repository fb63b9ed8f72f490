#include "platform/lock_sequence.h"

#include "base/virtual_time.h"

#include <gtest/gtest.h>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

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

class FakeConfirmation final : public LockConfirmation {
public:
    Subscription expect(std::function<void()> confirmed) override {
        ++expected;
        confirm_ = std::move(confirmed);
        return Subscription{[this] { confirm_ = nullptr; }};
    }
    void lock() {
        locked = true;
        if (confirm_) confirm_();
    }
    [[nodiscard]] bool isLocked() const override { return locked; }

    int expected = 0;
    bool locked = false;

private:
    std::function<void()> confirm_;
};

struct LockSequenceTest : testing::Test {
    VirtualTime time{TimePoint{}};
    FakeConfirmation confirmation;
    FakeWay first{Answer::accepts};
    FakeWay second{Answer::accepts};
    FakeWay third{Answer::accepts};
    std::optional<LockSequence> controller{
        std::in_place, std::vector<ScreenLock*>{&first, &second, &third}, time, confirmation};

    [[nodiscard]] std::vector<int> requests() const {
        return {first.requests, second.requests, third.requests};
    }
};

using Requests = std::vector<int>;

} // namespace

TEST_F(LockSequenceTest, TheFirstWayIsAskedAtOnceAndTheConfirmationExpected) {
    controller->lock();
    EXPECT_EQ(requests(), (Requests{1, 0, 0}));
    EXPECT_EQ(confirmation.expected, 1);
}

TEST_F(LockSequenceTest, OnceTheScreenIsLockedNoOtherWayIsAsked) {
    controller->lock();
    time.advance(LockSequence::patience - 1ns);
    confirmation.locked = true;
    time.advance(1h);
    EXPECT_EQ(requests(), (Requests{1, 0, 0}));
}

TEST_F(LockSequenceTest, OnceItWasLockedNoOtherWayIsAskedThoughItIsUnlockedAgain) {
    controller->lock();
    time.advance(200ms);
    confirmation.lock();
    time.advance(1100ms);
    confirmation.locked = false;
    time.advance(1h);
    EXPECT_EQ(requests(), (Requests{1, 0, 0}));
    EXPECT_EQ(time.pending(), 0U);
}

TEST_F(LockSequenceTest, ARefusalAfterTheConfirmationIsVoid) {
    FakeWay late{Answer::refusesLater};
    controller.emplace(std::vector<ScreenLock*>{&late, &second, &third}, time, confirmation);
    controller->lock();
    confirmation.lock();
    confirmation.locked = false;
    late.pending();
    time.advance(1h);
    EXPECT_EQ(requests(), (Requests{0, 0, 0}));
}

TEST_F(LockSequenceTest, AskedForAnewAfterAnUnlockAllWaysHaveTheirTurn) {
    controller->lock();
    confirmation.lock();
    confirmation.locked = false;
    controller->lock();
    time.advance(1h);
    EXPECT_EQ(requests(), (Requests{2, 1, 1}));
}

TEST_F(LockSequenceTest, AWayOfWhichNothingComesIsFollowedByTheNext) {
    controller->lock();
    time.advance(LockSequence::patience - 1ns);
    EXPECT_EQ(requests(), (Requests{1, 0, 0}));
    time.advance(1ns);
    EXPECT_EQ(requests(), (Requests{1, 1, 0}));
    time.advance(LockSequence::patience);
    EXPECT_EQ(requests(), (Requests{1, 1, 1}));
    time.advance(1h);
    EXPECT_EQ(requests(), (Requests{1, 1, 1}));
}

TEST_F(LockSequenceTest, ARefusalAsksTheNextAtOnceAndGivesItAllItsTime) {
    FakeWay refuses{Answer::refusesLater};
    controller.emplace(std::vector<ScreenLock*>{&refuses, &second, &third}, time, confirmation);
    controller->lock();
    time.advance(1s);
    refuses.pending();
    EXPECT_EQ(requests(), (Requests{0, 1, 0}));
    time.advance(LockSequence::patience - 1ns);
    EXPECT_EQ(requests(), (Requests{0, 1, 0}));
    time.advance(1ns);
    EXPECT_EQ(requests(), (Requests{0, 1, 1}));
}

TEST_F(LockSequenceTest, ARefusalThatComesTooLateIsVoid) {
    FakeWay late{Answer::refusesLater};
    controller.emplace(std::vector<ScreenLock*>{&late, &second, &third}, time, confirmation);
    controller->lock();
    time.advance(LockSequence::patience);
    EXPECT_EQ(requests(), (Requests{0, 1, 0}));
    late.pending();
    EXPECT_EQ(requests(), (Requests{0, 1, 0}));
}

TEST_F(LockSequenceTest, ARefusalAfterItHasGoneAsksNobody) {
    FakeWay late{Answer::refusesLater};
    controller.emplace(std::vector<ScreenLock*>{&late, &second}, time, confirmation);
    controller->lock();
    controller.reset();
    late.pending();
    EXPECT_EQ(requests(), (Requests{0, 0, 0}));
}

TEST_F(LockSequenceTest, AskingAgainBeginsAnew) {
    controller->lock();
    time.advance(LockSequence::patience);
    controller->lock();
    EXPECT_EQ(requests(), (Requests{2, 1, 0}));
    time.advance(LockSequence::patience - 1ns);
    EXPECT_EQ(requests(), (Requests{2, 1, 0}));
}

TEST_F(LockSequenceTest, WhenEveryWayRefusesItStaysSilent) {
    FakeWay one{Answer::refuses};
    FakeWay two{Answer::refuses};
    controller.emplace(std::vector<ScreenLock*>{&one, &two}, time, confirmation);
    controller->lock();
    time.advance(1h);
    EXPECT_EQ(one.requests + two.requests, 2);
    EXPECT_EQ(time.pending(), 0U);
    controller.emplace(std::vector<ScreenLock*>{}, time, confirmation);
    controller->lock();
}
