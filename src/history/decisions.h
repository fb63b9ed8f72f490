// What Wegslot decided in the past, as far as people ask about it.
#pragma once

#include "history/stretch.h"

#include <cstddef>
#include <string>
#include <vector>

namespace wegslot::history {

/// What people ask about.
struct Decision {
    enum class Kind {
        warned,
        locked,
        heldOpen,  ///< the keys were away, and a pause kept the screen open
        notArmed,  ///< nobody was waited for with a screen that was open: no key came near
        lockFailed ///< a lock was asked for and did not come
    };

    Kind kind = Kind::locked;
    std::size_t stretch = 0;
    TimePoint at;
    std::string reason; ///< the code, as others are told

    friend bool operator==(const Decision&, const Decision&) = default;
};

/// Who waits so long for a key in vain may ask why.
inline constexpr Nanoseconds notArmedAfter = std::chrono::minutes{1};

/// All of them, in order.
[[nodiscard]] std::vector<Decision> decisions(const std::vector<Stretch>& past);

} // namespace wegslot::history
