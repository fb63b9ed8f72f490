// The icon in the desktop's bar: shows what the monitor is doing, and has a menu. It is a status
// item of our own where the desktop takes them, and one of Qt's windows in X11 panels that take
// only those.
#pragma once

#include "app/qt/appearance.h"
#include "base/clock.h"
#include "base/scheduler.h"
#include "monitor/monitor.h"
#include "ui/linux/tray_item.h"
#include "ui/qt/x11_bar_watch.h"
#include "ui/qt/x11_tray.h"
#include "ui/tray_actions.h"
#include "ui/tray_content.h"

namespace wegslot {

class StatusIcon {
public:
    /// How long after the start an X11 panel is first looked for: by then who collects items has
    /// taken ours, and no second icon is seen for a moment. An asked service answers in
    /// milliseconds.
    static constexpr Nanoseconds firstLook = std::chrono::milliseconds{300};

    /// How often it is looked whether that panel is still there, while nobody has taken the item.
    static constexpr Nanoseconds lookInterval = std::chrono::seconds{5};

    /// There must be a QApplication. All must outlive this. `actions`: what is not the monitor's.
    StatusIcon(const Appearance& appearance, dbus::Connection& sessionBus, Monitor& monitor,
               const Clock& clock, Scheduler& scheduler, const TrayActions& actions);

    /// Whether a bar of the desktop has it now.
    [[nodiscard]] bool isShown() const { return item_.isTaken().get() || window_.isShown(); }

private:
    void show(const TrayContent& content);
    void choose();

    const bool isX11Session_;
    TrayContent content_;
    X11Tray window_;
    TrayItem item_;
    Subscription taken_;
    TrayPresenter presenter_;
    std::optional<X11BarWatch> barWatch_;
    Timer firstLook_;
    Timer looking_;
};

} // namespace wegslot
