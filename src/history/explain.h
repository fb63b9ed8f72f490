// Why Wegslot did what it did, and which single setting would have made it otherwise: found by
// judging the same past anew, so that it is no guess about how the rules work together.
#pragma once

#include "history/decisions.h"
#include "history/hindsight.h"
#include "history/stretch.h"

#include <optional>
#include <vector>

namespace wegslot::history {

/// One key at the instant of a decision.
struct KeyFact {
    Row key = 0;
    KeyState state = KeyState::away;
    std::optional<Nanoseconds> silentFor; ///< since it was heard last; nothing: never
    std::optional<Dbm> median;            ///< nothing without a sample in the window
    Dbm threshold;
    /// For how long it has not been near without a break, as far as is known.
    Nanoseconds notNearFor{0};

    /// Silent for too long, whatever its strength was.
    [[nodiscard]] bool isSilent(Seconds lostTimeout) const {
        return !silentFor || *silentFor > rounded(lostTimeout);
    }
};

/// What a change would have done in all that is kept, beside the decision that it is about.
struct Price {
    std::size_t locksLess = 0;
    std::size_t locksMore = 0;
    /// Of the locks that come all the same: how much later the latest comes, and which that is.
    Nanoseconds latest{0};
    std::optional<TimePoint> latestAt; ///< as lived
};

struct Remedy {
    Change change;
    PreferenceValue before;
    int steps = 0; ///< of the panel's control
    Price price;
};

struct Explanation {
    Decision decision;
    Preferences settings; ///< as they were
    std::vector<KeyFact> keys;
    std::optional<Remedy> remedy; ///< nothing where no single setting helps
};

/// How long before a decision judging begins anew, at least, unless less is known: longer than any
/// pause that judging takes by itself, so that what was before does not matter.
inline constexpr Nanoseconds lookBack = std::chrono::minutes{15};

/// What led to `decision`, without a remedy. Takes no time.
[[nodiscard]] Explanation facts(const std::vector<Stretch>& past, const Decision& decision);

/// All that can be said; takes a second or more, on any thread.
[[nodiscard]] Explanation explain(const std::vector<Stretch>& past, const Decision& decision);

/// Whether `change` makes `decision` otherwise: no lock before the keys are back, nor a warning
/// where it is about one; a warning or a lock where there was a pause; a guard that is armed
/// sooner.
[[nodiscard]] bool makesOtherwise(const std::vector<Stretch>& past, const Decision& decision,
                                  const Change& change);

/// The values that the panel's control has so many `steps` away from `value`, on both sides.
[[nodiscard]] std::vector<double> stepsAway(double value, int steps, double lowest, double highest,
                                            double step);

} // namespace wegslot::history
