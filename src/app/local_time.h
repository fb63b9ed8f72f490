// Times as people type and read them, in their own time zone.
#pragma once

#include "base/time.h"

#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// "22-11 12:31:07".
[[nodiscard]] std::string localTime(TimePoint wallTime);

/// What is meant by "12:31", "12:31:07" (the last such moment until `now`), "2026-11-22" (its
/// beginning), "2026-11-22 12:31" or "2026-11-22T12:31:07". Nothing for anything else.
[[nodiscard]] std::optional<TimePoint> typedTime(std::string_view typed, TimePoint now);

} // namespace wegslot
