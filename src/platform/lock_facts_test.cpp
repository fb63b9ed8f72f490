#include "platform/lock_facts.h"

#include <gtest/gtest.h>

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
