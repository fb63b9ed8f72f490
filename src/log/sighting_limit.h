// Limits how many newly seen devices the log names in a minute. A radio nearby can invent
// thousands; beyond the limit only their number is logged.
#pragma once

#include "base/time.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

class SightingLimit {
public:
    static constexpr std::size_t perMinute = 20;

    /// Whether `message`, which comes `now`, is to be written.
    [[nodiscard]] bool allows(std::string_view message, TimePoint now);

    /// The line about those that were not, once their minute is over; before that only `atOnce`.
    [[nodiscard]] std::optional<std::string> leftOut(TimePoint now, bool atOnce = false);

private:
    std::optional<TimePoint> minute_;
    std::size_t count_ = 0;
};

} // namespace wegslot
