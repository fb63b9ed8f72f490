#include "app/qt/status_icon.h"

#include "app/linux/folders.h"
#include "platform/linux/display_environment.h"
#include "ui/qt/local_clock_time.h"
#include "ui/qt/tray_painter.h"
#include "ui/tray_choice.h"

namespace wegslot {

StatusIcon::StatusIcon(const Appearance& appearance, dbus::Connection& sessionBus, Monitor& monitor,
                       const Clock& clock, Scheduler& scheduler, const TrayActions& actions)
    : isX11Session_(plainX11Display(displayEnvironment()).has_value()),
      window_(appearance.images, actions),
      item_(sessionBus, scheduler, actions, trayPainter(appearance.images)),
      taken_(item_.isTaken().onChange([this](bool taken) { choose(taken); })),
      presenter_(monitor.phase(), appearance.colors.scheme(),
                 folders::variable("XDG_CURRENT_DESKTOP"), localClockTime(clock),
                 [this](const TrayContent& content) { show(content); }) {
    // A panel says nothing when it comes or goes.
    if (isX11Session_)
        looking_ = scheduler.every(lookInterval, [this] { choose(item_.isTaken().get()); });
}

void StatusIcon::show(const TrayContent& content) {
    content_ = content;
    item_.show(content);
    if (window_.isShown()) window_.show(content);
}

void StatusIcon::choose(bool itemIsTaken) {
    const TrayKind kind = trayKind({.itemIsTaken = itemIsTaken,
                                    .isX11Session = isX11Session_,
                                    .hasWindowTray = isX11Session_ && X11Tray::isThere()});
    if (kind != TrayKind::window) return window_.hide();
    if (!window_.isShown()) window_.show(content_);
}

} // namespace wegslot
