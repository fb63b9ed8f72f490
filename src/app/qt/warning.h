// The warning as this desktop can show it: a panel and a sound, and a notification as well where
// another window may cover the panel or it cannot be shown at all.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "monitor/warning_hud.h"

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
