// A phase that a running Wegslot tells of, in the words of who reads it.
#pragma once

#include "control/reason.h"
#include "ui/phase_presentation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot::control {

/// The phase of that name, without what it carries.
[[nodiscard]] std::optional<Phase> phaseNamed(std::string_view name);

/// The text of the phase of that name. Nothing for what is not known here: then there is only the
/// text that came with it. `wallTime` writes instants of the clock on the wall.
[[nodiscard]] std::optional<Message> toldPhase(const std::string& name, const Reason& reason,
                                               std::optional<std::int64_t> pausedUntil,
                                               const ClockTime& wallTime);

} // namespace wegslot::control
