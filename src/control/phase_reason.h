// Why a phase was entered, in one short sentence, for scripts and people who follow Wegslot
// from outside.
#pragma once

#include "model/key_device.h"
#include "monitor/key_state.h"
#include "monitor/phase.h"

#include <string>
#include <vector>

namespace wegslot {

/// What a change of phase is explained from.
struct PhaseChange {
    const Phase& before;
    const Phase& after;
    PhaseCause cause;
    bool snoozeIsManual;
    const std::vector<KeyDevice>& keys;
    const KeyStates& states;
};

/// Whether the change is that of a lock that was asked for and did not come.
[[nodiscard]] bool lockFailed(const Phase& before, const Phase& after, PhaseCause cause);

[[nodiscard]] Message phaseReason(const PhaseChange& change);

} // namespace wegslot
