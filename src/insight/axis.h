// Where the times of day stand along what is drawn.
#pragma once

#include "insight/zone.h"

#include <string>
#include <vector>

namespace wegslot::insight {

struct Tick {
    TimePoint wall;
    std::string label;
};

/// At round times, as many as there is room for: `most` at the outside. `dayBegin` is what the
/// rounds are counted from.
[[nodiscard]] std::vector<Tick> ticks(const Span& visible, TimePoint dayBegin, int most,
                                      const Zone& zone);

} // namespace wegslot::insight
