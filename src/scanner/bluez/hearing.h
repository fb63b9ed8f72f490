// Notices a radio that went deaf: one that claims to scan and reports nobody any more, although
// there was a room full of devices a moment ago. Says what to try next, rarely. Pure.
#pragma once

#include "base/time.h"
#include "base/uuid.h"

#include <array>
#include <optional>

namespace wegslot::bluez {

class Hearing {
public:
    /// What helps, the mildest first.
    enum class Remedy { restartScan, renewDiscovery, renewConnection };

    /// Listening in vain after a lively room: five bursts, in which even a controller that
    /// reports each device once a scan reports everybody five times.
    static constexpr Nanoseconds patience = std::chrono::seconds{12};
    /// The same where hardly anybody was: a person alone who leaves is no fault.
    static constexpr Nanoseconds patienceWhenAlone = std::chrono::seconds{60};
    /// Between two rounds of remedies: doubled from the first to the longest.
    static constexpr Nanoseconds firstRest = std::chrono::minutes{5};
    static constexpr Nanoseconds longestRest = std::chrono::minutes{40};
    /// A room is lively when this many devices were heard within this time.
    static constexpr std::size_t lively = 3;
    static constexpr Nanoseconds recently = std::chrono::seconds{60};

    /// The radio scans from now on, or does not.
    void listen(bool listening, TimePoint now);

    /// True when this ends a deafness that was treated.
    bool heard(const Uuid& id, TimePoint now);

    /// What to try now, if anything. Each remedy is named once and then given time to work.
    [[nodiscard]] std::optional<Remedy> remedy(TimePoint now);

    /// When `remedy` may next have an answer, if the radio goes on listening in vain; nothing
    /// while it does not listen.
    [[nodiscard]] std::optional<TimePoint> due() const;

private:
    struct Heard {
        Uuid id;
        TimePoint at;
    };

    [[nodiscard]] Nanoseconds silence(TimePoint now) const;
    [[nodiscard]] bool wasLively() const;

    std::array<Heard, lively> last_; ///< of the different devices heard last
    std::optional<TimePoint> listeningSince_;
    Nanoseconds listenedInVain_{0}; ///< before `listeningSince_`
    Nanoseconds wait_ = patienceWhenAlone;
    Nanoseconds nextRest_ = firstRest;
    int remedies_ = 0; ///< tried in this round
    bool treated_ = false;
};

} // namespace wegslot::bluez
