// The warning as a panel on the screen, with a ring that is redrawn 20 times a second while the
// panel is visible, and not a moment longer. Sound and notification are separate.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "monitor/warning_hud.h"

#include <memory>

namespace wegslot {

class WarningPanel;

class QtWarningHud final : public WarningHUD {
public:
    static constexpr Nanoseconds frameInterval = std::chrono::milliseconds{50};

    /// Needs Qt's application object. Both must outlive this.
    QtWarningHud(const Clock& clock, Scheduler& scheduler);
    ~QtWarningHud() override;

    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override;
    void hide() override;

private:
    struct Retire {
        void operator()(WarningPanel* panel) const;
    };

    const Clock& clock_;
    Scheduler& scheduler_;
    std::unique_ptr<WarningPanel, Retire> panel_;
    Timer frames_;
};

} // namespace wegslot
