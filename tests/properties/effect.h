// What the monitor does to the world, as values: the oracle says what should come of an event,
// the stage records what did, and the two lists are compared.
#pragma once

#include "base/time.h"
#include "monitor/key_state.h"
#include "monitor/phase.h"

#include <string>
#include <variant>
#include <vector>

namespace wegslot {

namespace effect {

struct Logged {
    std::string message;
    friend bool operator==(const Logged&, const Logged&) = default;
};

/// The phase was assigned, to a new value or not.
struct PhaseSet {
    Phase phase;
    friend bool operator==(const PhaseSet&, const PhaseSet&) = default;
};

/// The states of the keys were replaced.
struct StatesSet {
    KeyStates states;
    friend bool operator==(const StatesSet&, const StatesSet&) = default;
};

struct PanelShown {
    TimePoint deadline;
    Seconds total;
    std::string message;
    /// Two totals that are no number are the same total: the user's choice arrived unchanged.
    friend bool operator==(const PanelShown& a, const PanelShown& b);
};

/// The panel was told to hide, showing or not.
struct PanelHidden {
    friend bool operator==(const PanelHidden&, const PanelHidden&) = default;
};

struct LockRequested {
    friend bool operator==(const LockRequested&, const LockRequested&) = default;
};

} // namespace effect

using Effect = std::variant<effect::Logged, effect::PhaseSet, effect::StatesSet, effect::PanelShown,
                            effect::PanelHidden, effect::LockRequested>;
using Effects = std::vector<Effect>;

/// One line, for the report of a fault. Instants are in nanoseconds: their texts drop what a
/// fault may be about.
[[nodiscard]] std::string text(const Effect& effect);
[[nodiscard]] std::string text(const Phase& phase);
[[nodiscard]] std::string text(const KeyStates& states);

} // namespace wegslot
