// How each phase is shown: one symbol, one colour and one line of text. The status icon and the
// head of the panel both take them from here.
#pragma once

#include "base/time.h"
#include "monitor/phase.h"
#include "ui/brand.h"

#include <functional>
#include <string>
#include <string_view>

namespace wegslot {

/// Writes an instant of the steady clock as the time that a person's clock shows then, without
/// the date, in the short form of their language.
using ClockTime = std::function<std::string(TimePoint steady)>;

[[nodiscard]] std::string_view symbol(const Phase& phase);

/// Lila for every phase in which nothing is guarded; red for a fault alone.
[[nodiscard]] Color color(const Phase& phase);

/// Dutch, for the user.
[[nodiscard]] Message text(const Phase& phase, const ClockTime& clockTime);

} // namespace wegslot
