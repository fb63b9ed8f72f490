// When the radio is to listen. A scan that never ends keeps bonded mice and headsets from coming
// back, so keys are listened to in bursts: long enough to hear each once, soon enough after one
// another that none grows old. Pure: told what happens and when, it answers what to do until when.
#pragma once

#include "base/time.h"
#include "base/uuid.h"

#include <optional>
#include <set>
#include <unordered_map>

namespace wegslot {

class ScanPolicy {
public:
    /// The slowest key that must never be lost: phones at rest send every two seconds.
    static constexpr Nanoseconds slowestKey = std::chrono::seconds{2};
    /// A key not heard for longer may be judged weak (the smoothing window) or lost (the
    /// shortest time-out that can be set).
    static constexpr Nanoseconds freshness = std::chrono::seconds{5};
    /// From asking for a scan to its first report (0.15 to 0.31 s were measured under emulation),
    /// and the random delay of each advertisement, up to 10 ms.
    static constexpr Nanoseconds startUp = std::chrono::milliseconds{350};

    /// A controller that filters duplicates reports a device once a scan, so a key heard at the
    /// start of one scan must be in time for the end of the next.
    static constexpr Nanoseconds nextScan = freshness - slowestKey - startUp;

    /// For a median of more than one sample where the key and the controller allow it.
    static constexpr Nanoseconds shortestBurst = std::chrono::seconds{1};
    /// Hears the slowest key wherever in its interval the scan begins.
    static constexpr Nanoseconds longestBurst = slowestKey + startUp;
    /// What is left: 300 ms. A bonded mouse advertises every 30 ms or less while it reconnects:
    /// several times in this.
    static constexpr Nanoseconds shortestGap = nextScan - longestBurst;
    /// A key not heard for this long is taken to be elsewhere: nothing is late any more.
    static constexpr Nanoseconds presence = std::chrono::seconds{30};
    /// How often a burst has its full length for the sake of those elsewhere. Short bursts may
    /// miss a key that returns for minutes: theirs and its rhythm can be one.
    static constexpr Nanoseconds searchInterval = std::chrono::seconds{10};
    /// A list left open is not a reason to scan for ever.
    static constexpr Nanoseconds listLimit = std::chrono::minutes{2};

    enum class Scan {
        off,
        on,
        anew, ///< on, but to be started once more, so that the controller forgets whom it reported
    };

    struct Decision {
        Scan scan = Scan::off;
        std::optional<TimePoint> until; ///< ask again then; nothing: not before something changes
    };

    /// The keys to be heard, and whether a list of everything is open. A key that is new is taken
    /// to be here and due: it may be one whose connection has just ended.
    void want(bool list, std::set<Uuid> keys, TimePoint now);

    /// The controller does not filter duplicates at the moment.
    void setUnfiltered(bool unfiltered) { unfiltered_ = unfiltered; }

    /// An advertisement came. True when it is a key's, so that the next decision may differ.
    bool heard(const Uuid& id, TimePoint now);

    /// A connection waits for the radio: ends the scan as soon as every key that is here has been
    /// heard in it, and begins no other before that is due for a key; `resume` ends that early.
    void makeWay(TimePoint now) { wayMadeAt_ = now; }
    void resume() { wayMadeAt_.reset(); }

    /// No scan is running: the radio was off, asleep or restarted. The next begins at once.
    void reset();

    /// What to do at `now`, which must not go back.
    [[nodiscard]] Decision decide(TimePoint now);

private:
    /// Of the keys that a burst is for.
    enum class Heard { noneIsHere, some, all };

    [[nodiscard]] bool isContinuous(TimePoint now) const;
    [[nodiscard]] bool isPresent(TimePoint lastHeard, TimePoint now) const;
    [[nodiscard]] bool isSearching() const;
    [[nodiscard]] bool isWayAsked() const;
    [[nodiscard]] Heard heardInBurst(TimePoint now) const;
    [[nodiscard]] TimePoint burstEnd(TimePoint now) const;
    [[nodiscard]] TimePoint gapEnd(TimePoint now) const;
    Decision turn(Scan scan, TimePoint now);

    std::optional<TimePoint> listSince_;
    std::set<Uuid> keys_;
    std::unordered_map<Uuid, TimePoint> lastHeard_; ///< of the keys
    bool unfiltered_ = false;
    bool scanning_ = false;
    std::optional<TimePoint> since_;      ///< of the scan or the gap
    std::optional<TimePoint> searchedAt_; ///< when the last burst of full length began
    std::optional<TimePoint> wayMadeAt_;
};

} // namespace wegslot
