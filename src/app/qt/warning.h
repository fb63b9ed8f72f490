// The warning as this desktop can show it: a panel with a sound; where that may be covered by
// another window, or cannot be there at all, a notification too.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "hud/warning_hud.h"

#include <memory>

namespace wegslot {

/// What a warning consists of.
struct WarningParts {
    bool panel = false;
    bool sound = false;
    bool notification = false;

    friend bool operator==(const WarningParts&, const WarningParts&) = default;
};

/// `placesWindows`: whether the panel is put in front of everything.
[[nodiscard]] WarningParts warningParts(bool hasDisplay, bool placesWindows);

[[nodiscard]] std::unique_ptr<WarningHUD> panelWithSound(const Clock& clock, Scheduler& scheduler);

[[nodiscard]] std::unique_ptr<WarningHUD> warning(dbus::Connection& sessionBus, const Clock& clock,
                                                  Scheduler& scheduler);

} // namespace wegslot
