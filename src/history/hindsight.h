// Judges a stretch of the past anew, with the monitor that judges the present: as it was lived, or
// with one setting at another value.
//
// With another value the past is only imagined. A lock that was not lived is confirmed at once, as
// lockers do, and undone at the first near key or input, as people do; a lock that was lived and is
// not asked for now is not there, nor is its unlock. What would else have gone otherwise, such as
// what somebody asks for who is locked out, nobody knows: it is an estimate.
#pragma once

#include "history/stretch.h"

#include <functional>
#include <vector>

namespace wegslot::history {

/// One setting at another value.
struct Change {
    std::string setting;   ///< its name; "keys" for the threshold of one
    PreferenceValue value; ///< for a threshold a number, in dBm
    Row key = 0;           ///< whose threshold

    /// Puts it in the place of what `values` say of the setting, if they do.
    void applyTo(Preferences& values) const;

    friend bool operator==(const Change&, const Change&) = default;
};

struct Outcome {
    TimePoint at;
    Phase phase;
    PhaseCause cause = PhaseCause::judgement;
};

/// How long a lock takes that is imagined: a locker's usual time.
inline constexpr Nanoseconds imaginedConfirmation = std::chrono::milliseconds{300};

/// The phases that were entered at the instants [from, until) of `stretch`: as lived without
/// `change`. Begins with a monitor that knows nothing of what was before: `from` is 0 or settled.
/// May be called on any thread; nothing is logged.
[[nodiscard]] std::vector<Outcome> judgedAnew(const Stretch& stretch, std::size_t from,
                                              std::size_t until, const Change* change = nullptr);

} // namespace wegslot::history
