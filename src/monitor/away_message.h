// The sentence that says which keys are away, for the countdown and the log.
#pragma once

#include "base/translation.h"
#include "model/key_device.h"
#include "monitor/key_state.h"

#include <vector>

namespace wegslot {

/// For the names of those that are away.
[[nodiscard]] Message awayMessage(const std::vector<Message>& names);

/// Names the keys that are judged away, in the order of the list. A key without a judgement is
/// not named.
[[nodiscard]] Message awayMessage(const std::vector<KeyDevice>& keys, const KeyStates& states);

} // namespace wegslot
