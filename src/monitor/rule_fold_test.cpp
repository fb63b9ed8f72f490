#include "monitor/rule_fold.h"

#include "tests/support/world.h"

using namespace wegslot;

namespace {

Verdict folded(LockRule rule, std::vector<std::optional<KeyState>> states) {
    std::vector<KeyDevice> keys;
    KeyStates map;
    for (unsigned i = 0; i < states.size(); ++i) {
        keys.push_back(keyNamed("sleutel", i));
        if (states[i]) map.emplace(numbered(i), *states[i]);
    }
    return fold(rule, keys, map);
}

constexpr auto near = KeyState::near;
constexpr auto leaving = KeyState::leaving;
constexpr auto away = KeyState::away;

} // namespace

TEST(RuleFold, OneNearAndOneLeaving) {
    EXPECT_EQ(folded(LockRule::anyAway, {near, leaving}), (Verdict{false, true}));
    EXPECT_EQ(folded(LockRule::allAway, {near, leaving}), (Verdict{false, false}));
}

TEST(RuleFold, OneNearAndOneAway) {
    EXPECT_EQ(folded(LockRule::anyAway, {near, away}), (Verdict{true, true}));
    EXPECT_EQ(folded(LockRule::allAway, {near, away}), (Verdict{false, false}));
}

TEST(RuleFold, OneLeavingAndOneAway) {
    EXPECT_EQ(folded(LockRule::anyAway, {leaving, away}), (Verdict{true, true}));
    EXPECT_EQ(folded(LockRule::allAway, {leaving, away}), (Verdict{false, true}));
}

TEST(RuleFold, AllAlike) {
    for (const auto rule : {LockRule::allAway, LockRule::anyAway}) {
        EXPECT_EQ(folded(rule, {near, near}), (Verdict{false, false}));
        EXPECT_EQ(folded(rule, {leaving, leaving}), (Verdict{false, true}));
        EXPECT_EQ(folded(rule, {away, away}), (Verdict{true, true}));
    }
}

TEST(RuleFold, AKeyWithoutAStateCountsAsAway) {
    EXPECT_EQ(folded(LockRule::anyAway, {near, std::nullopt}), (Verdict{true, true}));
    EXPECT_EQ(folded(LockRule::allAway, {std::nullopt}), (Verdict{true, true}));
}

TEST(RuleFold, NoKeys) {
    EXPECT_EQ(folded(LockRule::allAway, {}), (Verdict{true, true}));
    EXPECT_EQ(folded(LockRule::anyAway, {}), (Verdict{false, false}));
}
