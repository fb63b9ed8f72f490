// What the whole system is doing. Each case that needs to say more carries it.
#pragma once

#include "base/time.h"
#include "base/translation.h"

#include <string>
#include <string_view>
#include <variant>

namespace wegslot {

namespace phase {

/// The radio is not on; `text` says why. Nothing is judged.
struct BluetoothUnavailable {
    Message text;
    friend bool operator==(const BluetoothUnavailable&, const BluetoothUnavailable&) = default;
};

/// The keys are away, but `text` keeps the screen open.
struct Paused {
    Message text;
    friend bool operator==(const Paused&, const Paused&) = default;
};

/// A pause asked for, or taken after a cancelled warning. `until` is on the steady clock.
struct Snoozed {
    TimePoint until;
    friend bool operator==(const Snoozed&, const Snoozed&) = default;
};

/// The countdown shows; the screen is locked at `deadline`, on the steady clock.
struct Warning {
    TimePoint deadline;
    friend bool operator==(const Warning&, const Warning&) = default;
};

/// The user switched monitoring off.
struct Disabled {
    friend bool operator==(const Disabled&, const Disabled&) = default;
};

struct NoKeys {
    friend bool operator==(const NoKeys&, const NoKeys&) = default;
};

/// Nothing is locked until the keys have been near once.
struct WaitingForReturn {
    friend bool operator==(const WaitingForReturn&, const WaitingForReturn&) = default;
};

struct Present {
    friend bool operator==(const Present&, const Present&) = default;
};

/// Not all required keys are near, but they are not gone either.
struct Leaving {
    friend bool operator==(const Leaving&, const Leaving&) = default;
};

/// The screen is locked, or a lock was just asked for.
struct Locked {
    friend bool operator==(const Locked&, const Locked&) = default;
};

} // namespace phase

using Phase = std::variant<phase::BluetoothUnavailable, phase::Paused, phase::Snoozed,
                           phase::Warning, phase::Disabled, phase::NoKeys, phase::WaitingForReturn,
                           phase::Present, phase::Leaving, phase::Locked>;

/// What brought a phase about.
enum class PhaseCause {
    judgement, ///< of keys, radio, settings and pauses
    request,   ///< somebody asked for it
    screen,    ///< the screen was locked or unlocked
};

/// The case alone: "waitingForReturn".
[[nodiscard]] std::string_view name(const Phase& phase);

/// The case and what it carries, as the log has it. `wallOffset` is what the clock on the wall
/// is ahead of the steady one: instants are written as a person's clock will show them.
[[nodiscard]] std::string description(const Phase& phase, Nanoseconds wallOffset);

template <typename Case>
[[nodiscard]] bool is(const Phase& phase) {
    return std::holds_alternative<Case>(phase);
}

} // namespace wegslot
