// What the monitor ought to do, written a second time from the rules: slow, flat and obvious,
// with nothing of the monitor's own but the types of the values. A life asks it after every
// event and compares.
#pragma once

#include "model/key_device.h"
#include "model/lock_rule.h"
#include "tests/properties/effect.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::oracle {

/// The user's settings.
struct Choices {
    bool enabled = true;
    std::vector<KeyDevice> keys;
    LockRule rule = LockRule::allAway;
    Seconds awayDelay{5};
    Seconds lostTimeout{15};
    bool warningEnabled = true;
    Seconds warningSeconds{5};
    bool pauseDuringMeetings = true;
    bool pauseWhileActive = true;
};

/// What the radio knows about one key.
struct Heard {
    std::optional<TimePoint> last;
    std::optional<Dbm> strength;
};

/// Everything that one event can depend on, apart from the state.
struct Inputs {
    TimePoint now;
    /// What the clock on the wall is ahead of `now`.
    Nanoseconds wallAhead{0};
    const Choices& choices;
    /// One for each key, in the order of the list.
    std::vector<Heard> heard;
    bool radioOn = false;
    std::string radioText;
    Seconds idle{0};
    bool camera = false;
    std::optional<std::string> microphone;
};

/// All that the monitor remembers from one event to the next.
struct State {
    Phase phase = phase::WaitingForReturn{};
    KeyStates keyStates;
    bool snoozeIsManual = false;
    std::map<Uuid, TimePoint> belowSince;
    bool screenLocked = false;
    std::optional<TimePoint> lockRequestedAt;
    std::optional<TimePoint> snoozeUntil;
};

struct Outcome {
    State state;
    Effects effects;
};

[[nodiscard]] Outcome start(const Inputs& inputs);
[[nodiscard]] Outcome tick(State state, const Inputs& inputs);
[[nodiscard]] Outcome lockNow(State state, const Inputs& inputs);
[[nodiscard]] Outcome pause(State state, const Inputs& inputs, Seconds duration);
[[nodiscard]] Outcome resume(State state, const Inputs& inputs);
[[nodiscard]] Outcome cancelWarning(State state, const Inputs& inputs);
[[nodiscard]] Outcome screenLocked(State state, const Inputs& inputs);
[[nodiscard]] Outcome screenUnlocked(State state, const Inputs& inputs);
/// The setting was assigned `enabled`, which may be what it was.
[[nodiscard]] Outcome enabledAssigned(State state, const Inputs& inputs, bool enabled);

} // namespace wegslot::oracle
