// The port to the warning that precedes a lock. It only shows the countdown and reports the cancel;
// when to show, hide and lock is up to the monitor.
#pragma once

#include "base/time.h"
#include "base/translation.h"

#include <functional>

namespace wegslot {

class WarningHUD {
public:
    WarningHUD() = default;
    WarningHUD(const WarningHUD&) = delete;
    WarningHUD& operator=(const WarningHUD&) = delete;
    virtual ~WarningHUD() = default;

    /// Replaces any panel on screen. `deadline` is on the clock that never steps; `total` is
    /// the full length of the countdown; `onCancel` is called once for each press.
    virtual void show(TimePoint deadline, Seconds total, const Message& message,
                      std::function<void()> onCancel) = 0;

    /// Harmless when there is no panel.
    virtual void hide() = 0;
};

} // namespace wegslot
