// What was kept, put so that it can be judged anew: at each instant at which the keys were judged,
// what the scanner had to say of each. That depends on no setting, so that it is found once and
// judged as often as somebody wants.
#pragma once

#include "history/minute.h"
#include "scanner/dbm.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace wegslot::history {

struct Stretch {
    /// What was known of a key at one instant.
    struct Heard {
        TimePoint last;
        std::optional<Dbm> median; ///< of the usual window; nothing without a sample in it
    };

    struct Instant {
        TimePoint at;
        /// As lived: all keys near, and the phase as it is then. From here a monitor that knows
        /// nothing of what was before judges as the one that lived it.
        bool isSettled = false;
    };

    struct Key {
        std::vector<std::optional<Heard>> heard;     ///< for each instant; nothing: never heard
        std::vector<std::optional<KeyState>> states; ///< as lived; nothing: was no key
    };

    std::vector<Instant> instants;
    std::map<Row, Key> keys;
    std::vector<Event> events; ///< in order of time
    Nanoseconds wallOffset{0}; ///< as it was at the end

    /// The first instant that is not before `at`; the number of instants if there is none.
    [[nodiscard]] std::size_t from(TimePoint at) const;

    /// All settings as they stood.
    [[nodiscard]] Preferences settingsAt(TimePoint at) const;
};

/// One for each run of the program, in their order, from where its settings are known. Where some
/// minutes lack within a run, as after a full disk, another one begins.
[[nodiscard]] std::vector<Stretch> stretches(const std::vector<Minute>& minutes);

} // namespace wegslot::history
