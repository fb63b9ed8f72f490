// A page as lines of a terminal, and what somebody types to it.
#pragma once

#include "coupling/page.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot::coupling {

/// `now`: for how long there still is.
[[nodiscard]] std::vector<std::string> linesOf(const Page& page, TimePoint now);

/// By its number; an empty line is the main one. Nothing for anything else.
[[nodiscard]] std::optional<Action> chosenBy(const Page& page, std::string_view line);

} // namespace wegslot::coupling
