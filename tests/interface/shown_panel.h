// The warning as a test shows it, and the panel that it put up.
#pragma once

#include "base/virtual_time.h"
#include "hud/qt/qt_warning_hud.h"
#include "hud/qt/warning_panel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>

#include <algorithm>
#include <string>

namespace wegslot {

struct ShownPanel {
    static constexpr auto message = "Telefoon is buiten bereik";

    VirtualTime time{TimePoint{std::chrono::hours{500000}}};
    int cancelled = 0;
    QtWarningHud hud{time, time};

    void show(const std::string& text = message, Seconds total = Seconds{5}) {
        hud.show(later(time.now(), rounded(total)), total, text, [this] { ++cancelled; });
    }

    /// Does what is under way, deleting included.
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    [[nodiscard]] static QList<WarningPanel*> panels() {
        QList<WarningPanel*> found;
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (auto* const panel = dynamic_cast<WarningPanel*>(window)) found << panel;
        return found;
    }

    /// The only one there is.
    [[nodiscard]] static WarningPanel& panel() { return *panels().constFirst(); }
    [[nodiscard]] static QAbstractButton& button() {
        return *panel().findChild<QAbstractButton*>();
    }

    ~ShownPanel() {
        hud.hide();
        settle();
    }
};

} // namespace wegslot
