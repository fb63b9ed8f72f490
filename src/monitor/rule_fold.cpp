#include "monitor/rule_fold.h"

#include <algorithm>

namespace wegslot {

Verdict fold(LockRule rule, const std::vector<KeyDevice>& keys, const KeyStates& states) {
    const auto stateOf = [&states](const KeyDevice& key) {
        const auto found = states.find(key.id);
        return found == states.end() ? KeyState::away : found->second;
    };
    const auto isAway = [&](const KeyDevice& key) { return stateOf(key) == KeyState::away; };
    const auto isNear = [&](const KeyDevice& key) { return stateOf(key) == KeyState::near; };

    switch (rule) {
    case LockRule::allAway:
        return {.keysGone = std::ranges::all_of(keys, isAway),
                .keysNotNear = std::ranges::none_of(keys, isNear)};
    case LockRule::anyAway:
        return {.keysGone = std::ranges::any_of(keys, isAway),
                .keysNotNear = !std::ranges::all_of(keys, isNear)};
    }
    return {};
}

} // namespace wegslot
