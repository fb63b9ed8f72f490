#include "app/qt/warning.h"

#include "app/qt/display.h"
#include "hud/hidden_hud.h"
#include "hud/joint_hud.h"
#include "hud/linux/warning_notification.h"
#include "hud/linux/warning_sound.h"
#include "hud/qt/qt_warning_hud.h"

#include <utility>

namespace wegslot {

std::unique_ptr<WarningHUD> panelWithSound(const Clock& clock, Scheduler& scheduler) {
    if (!hasDisplay(displayEnvironment())) return std::make_unique<HiddenHud>();
    JointHud::Parts parts;
    parts.push_back(std::make_unique<QtWarningHud>(clock, scheduler));
    parts.push_back(std::make_unique<WarningSound>());
    return std::make_unique<JointHud>(std::move(parts));
}

std::unique_ptr<WarningHUD> warning(dbus::Connection& sessionBus, const Clock& clock,
                                    Scheduler& scheduler) {
    auto panel = panelWithSound(clock, scheduler);
    if (placesWindows() || !hasDisplay(displayEnvironment())) return panel;
    JointHud::Parts parts;
    parts.push_back(std::move(panel));
    parts.push_back(std::make_unique<WarningNotification>(sessionBus));
    return std::make_unique<JointHud>(std::move(parts));
}

} // namespace wegslot
