#include "platform/lock_facts.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace wegslot;

namespace {

struct LockFactsTest : testing::Test {
    std::string changes; // L and U, one a change
    LockFacts facts{[this](bool locked) { changes += locked ? 'L' : 'U'; }};
};

} // namespace

TEST_F(LockFactsTest, EachChangeIsToldOnceHoweverOftenItIsSaid) {
    facts.setHint(false);
    facts.setHint(true);
    facts.setHint(true);
    facts.setSaver(true);
    facts.setHint(false);
    facts.setHint(false);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, WithoutAHintTheScreenSaverDecides) {
    facts.setSaver(true);
    facts.setSaver(true);
    facts.setSaver(false);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, WhereTheHintIsNeverSetTheScreenSaverDecides) {
    facts.setHint(false);
    facts.setSaver(true);
    EXPECT_EQ(changes, "L");
    facts.setSaver(std::nullopt); // it has gone
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, OnceTheHintWasSetItAloneDecides) {
    facts.setHint(true);
    facts.setSaver(true);
    facts.setHint(false); // the screen saver is still fading out
    EXPECT_EQ(changes, "LU");
    facts.setSaver(false);
    facts.setSaver(true); // a screen saver without a lock
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, OnADesktopThatSetsTheHintAnActiveScreenSaverIsNoLock) {
    facts.trustHint(true);
    facts.setHint(false);
    facts.setSaver(true);
    EXPECT_EQ(changes, "");
    facts.setHint(true);
    EXPECT_EQ(changes, "L");
}

TEST_F(LockFactsTest, ATrustedHintThatCannotBeReadLeavesTheScreenSaver) {
    facts.trustHint(true);
    facts.setSaver(true);
    EXPECT_EQ(changes, "L");
}

TEST_F(LockFactsTest, WithoutHintAndScreenSaverTheLockerDecides) {
    facts.setHint(false); // logind is there, and nobody tells it
    facts.setLocker(true);
    facts.setLocker(true);
    EXPECT_EQ(facts.witness(), LockWitness::locker);
    facts.setLocker(false);
    EXPECT_EQ(changes, "LU");
    EXPECT_EQ(facts.witness(), std::nullopt);
}

TEST_F(LockFactsTest, AHintThatIsKeptRightOverrulesALocker) {
    facts.setHint(true);
    facts.setLocker(true);
    EXPECT_EQ(facts.witness(), LockWitness::hint);
    facts.setHint(false); // the locker is still on its way out
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, AScreenSaverTestifiesBeforeALocker) {
    facts.setLocker(true);
    facts.setSaver(true);
    EXPECT_EQ(facts.witness(), LockWitness::saver);
    facts.setSaver(false);
    EXPECT_EQ(changes, "L");
    facts.setLocker(false);
    EXPECT_EQ(changes, "LU");
}

TEST_F(LockFactsTest, WhateverIsSaidInWhateverOrderEachChangeIsToldOnce) {
    std::mt19937 dice(20); // NOLINT: the same words each time
    const auto draw = [&dice] {
        const std::optional<bool> said[] = {std::nullopt, false, true};
        return said[dice() % 3];
    };
    for (int word = 0; word < 20000; ++word) {
        switch (dice() % 4) {
        case 0:
            facts.setHint(draw());
            break;
        case 1:
            facts.setSaver(draw());
            break;
        case 2:
            facts.setLocker(draw().value_or(false));
            break;
        default:
            facts.trustHint(draw().value_or(false));
        }
        // What was told last is how it is.
        ASSERT_EQ(facts.witness().has_value(), !changes.empty() && changes.back() == 'L') << word;
    }
    EXPECT_GT(changes.size(), 1000U);
    EXPECT_EQ(changes.find("LL"), std::string::npos);
    EXPECT_EQ(changes.find("UU"), std::string::npos);
}
