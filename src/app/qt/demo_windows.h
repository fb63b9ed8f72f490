// The demo's icon and panel, over its own small world: nothing in them reaches the user's files or
// session.
#pragma once

#include "app/qt/appearance.h"
#include "app/qt/bus_pump.h"
#include "app/qt/menu_panel.h"
#include "app/qt/status_icon.h"
#include "core/app_model.h"
#include "dbus/forgeries.h"

#include <QCoreApplication>

namespace wegslot {

class DemoWindows {
public:
    DemoWindows(AppModel& model, Scheduler& scheduler, const Clock& clock)
        : forgeries_(clock),
          sessionBus_(dbus::sessionBus(forgeries_), pump, scheduler,
                      dbus::Connection::Complaints::none),
          appearance_(sessionBus_),
          panel_({.model = model,
                  .appearance = appearance_,
                  .clock = clock,
                  .scheduler = scheduler,
                  .loginItem = loginItem_,
                  .remembered = remembered_,
                  .openLog = [] {},
                  .quit = [] { QCoreApplication::quit(); },
                  .couple = [] {},
                  .stays = true}),
          icon_(appearance_, sessionBus_, model.monitor(), clock, scheduler,
                {.open = [this](const TrayClick& click) { panel_.toggle(click); },
                 .couple = [] {},
                 .insight = [] {},
                 .quit = [] { QCoreApplication::quit(); }}) {
        panel_.open();
    }

private:
    struct NoLoginItem final : LoginItem {
        [[nodiscard]] bool isEnabled() const override { return false; }
        [[nodiscard]] std::optional<Failure> setEnabled(bool /*enabled*/) override {
            return Failure{message("dit is een demo")};
        }
    };

    dbus::Forgeries forgeries_;
    dbus::Connection sessionBus_;
    Appearance appearance_;
    NoLoginItem loginItem_;
    MemoryStore nowhere_;
    Remembered remembered_{nowhere_};
    MenuPanel panel_;
    StatusIcon icon_;
};

} // namespace wegslot
