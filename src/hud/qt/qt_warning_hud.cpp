#include "hud/qt/qt_warning_hud.h"

#include "hud/countdown.h"
#include "hud/qt/warning_panel.h"

#include <QString>

#include <utility>

namespace wegslot {

QtWarningHud::QtWarningHud(const Clock& clock, Scheduler& scheduler)
    : clock_(clock),
      scheduler_(scheduler) {}

QtWarningHud::~QtWarningHud() = default;

void QtWarningHud::show(TimePoint deadline, Seconds total, const Message& message,
                        std::function<void()> onCancel) {
    hide();
    const auto countdown = [this, deadline, total] {
        return Countdown::at(clock_.now(), deadline, total);
    };
    panel_.reset(std::make_unique<WarningPanel>(QString::fromStdString(message.translated()),
                                                countdown(), std::move(onCancel))
                     .release());
    panel_->present();
    frames_ =
        scheduler_.every(frameInterval, [this, countdown] { panel_->setCountdown(countdown()); });
}

void QtWarningHud::hide() {
    frames_.reset();
    panel_.reset();
}

void QtWarningHud::Retire::operator()(WarningPanel* panel) const { panel->retire(); }

} // namespace wegslot
