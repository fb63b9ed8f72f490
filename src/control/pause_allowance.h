// Limits how long programs can keep Wegslot paused in total: whatever they ask for, and however
// often, no pause reaches beyond four hours after the first, until a person does something
// themselves.
#pragma once

#include "base/time.h"

#include <algorithm>
#include <optional>

namespace wegslot::control {

class PauseAllowance {
public:
    static constexpr Nanoseconds longest = std::chrono::hours{4};

    /// As much of `asked` as may be had at `now`; nothing or less when the time is over.
    [[nodiscard]] Nanoseconds granted(Nanoseconds asked, TimePoint now) {
        if (!end_) end_ = now + longest;
        return std::min(asked, *end_ - now);
    }

    /// A person acted: the next pause is a first one again.
    void renew() { end_.reset(); }

private:
    std::optional<TimePoint> end_;
};

} // namespace wegslot::control
