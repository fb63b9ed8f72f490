#include "app/qt/warning.h"

#include "app/qt/display.h"
#include "hud/hidden_hud.h"
#include "hud/joint_hud.h"
#include "hud/linux/warning_notification.h"
#include "hud/linux/warning_sound.h"
#include "hud/qt/qt_warning_hud.h"

#include <utility>

namespace wegslot {

namespace {

/// `session`: for the notification, if there is one.
std::unique_ptr<WarningHUD> make(const WarningParts& wanted, dbus::Connection* session,
                                 const Clock& clock, Scheduler& scheduler) {
    if (wanted == WarningParts{}) return std::make_unique<HiddenHud>();
    JointHud::Parts parts;
    if (wanted.panel) parts.push_back(std::make_unique<QtWarningHud>(clock, scheduler));
    if (wanted.sound) parts.push_back(std::make_unique<WarningSound>());
    if (wanted.notification && session != nullptr)
        parts.push_back(std::make_unique<WarningNotification>(*session));
    return std::make_unique<JointHud>(std::move(parts));
}

} // namespace

WarningParts warningParts(bool hasDisplay, bool placesWindows) {
    return {.panel = hasDisplay, .sound = hasDisplay, .notification = hasDisplay && !placesWindows};
}

std::unique_ptr<WarningHUD> panelWithSound(const Clock& clock, Scheduler& scheduler) {
    return make(warningParts(hasDisplay(displayEnvironment()), true), nullptr, clock, scheduler);
}

std::unique_ptr<WarningHUD> warning(dbus::Connection& sessionBus, const Clock& clock,
                                    Scheduler& scheduler) {
    return make(warningParts(hasDisplay(displayEnvironment()), placesWindows()), &sessionBus, clock,
                scheduler);
}

} // namespace wegslot
