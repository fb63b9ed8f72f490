// Folds the states of all keys into the two verdicts that the phases turn on.
#pragma once

#include "model/key_device.h"
#include "model/lock_rule.h"
#include "monitor/key_state.h"

#include <vector>

namespace wegslot {

struct Verdict {
    bool keysGone = false;    ///< the lock condition
    bool keysNotNear = false; ///< not all that must be near is near; implied by keysGone
    friend bool operator==(const Verdict&, const Verdict&) = default;
};

/// A key without a state counts as away.
[[nodiscard]] Verdict fold(LockRule rule, const std::vector<KeyDevice>& keys,
                           const KeyStates& states);

} // namespace wegslot
