// What happened, as text: an event as a trace has it, and beside these the phases and opinions.
// Each is a JSON object of one member, whose name says which it is.
#pragma once

#include "base/result.h"
#include "history/minute.h"

#include <string>
#include <string_view>

namespace wegslot::history {

/// As exact as traces are: durations and the instants of phases and opinions to the millisecond,
/// a start to the second.
[[nodiscard]] std::string written(const Happening& happening);

[[nodiscard]] Result<Happening> readHappening(std::string_view text);

} // namespace wegslot::history
