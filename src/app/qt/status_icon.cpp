#include "app/qt/status_icon.h"

#include "app/linux/folders.h"
#include "platform/linux/display_environment.h"
#include "ui/qt/local_clock_time.h"
#include "ui/qt/tray_painter.h"
#include "ui/tray_choice.h"

namespace wegslot {
namespace {

TrayActions withMonitor(TrayActions actions, Monitor& monitor, const Clock& clock) {
    actions.lock = [&monitor] { monitor.lockNow(); };
    actions.pause = [&monitor](Seconds duration) { monitor.pause(duration); };
    actions.pauseUntilMorning = [&monitor, &clock] {
        monitor.pause(untilMorning(clock.wallClock()));
    };
    actions.resume = [&monitor] { monitor.resume(); };
    return actions;
}

} // namespace

StatusIcon::StatusIcon(const Appearance& appearance, dbus::Connection& sessionBus, Monitor& monitor,
                       const Clock& clock, Scheduler& scheduler, const TrayActions& actions)
    : isX11Session_(plainX11Display(displayEnvironment()).has_value()),
      window_(appearance.images, withMonitor(actions, monitor, clock)),
      item_(sessionBus, scheduler, withMonitor(actions, monitor, clock),
            trayPainter(appearance.images)),
      taken_(item_.isTaken().onChange([this](bool) { choose(); })),
      presenter_(monitor.phase(), appearance.colors.scheme(),
                 folders::variable("XDG_CURRENT_DESKTOP"), localClockTime(clock),
                 [this](const TrayContent& content) { show(content); }) {
    if (!isX11Session_) return;
    barWatch_.emplace([this] { choose(); });
    firstLook_ = scheduler.after(firstLook, [this] { choose(); });
    // A panel says nothing when it goes.
    looking_ = scheduler.every(lookInterval, [this] { choose(); });
}

void StatusIcon::show(const TrayContent& content) {
    content_ = content;
    item_.show(content);
    if (window_.isShown()) window_.show(content);
}

void StatusIcon::choose() {
    const TrayKind kind = trayKind({.itemIsTaken = item_.isTaken().get(),
                                    .isX11Session = isX11Session_,
                                    .hasWindowTray = isX11Session_ && X11Tray::isThere()});
    if (kind != TrayKind::window) return window_.hide();
    if (!window_.isShown()) window_.show(content_);
}

} // namespace wegslot
