#include "ui/qt/x11_tray.h"

#include "log/log.h"
#include "ui/qt/tray_painter.h"

#include <QAction>
#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

#include <string>
#include <utility>

namespace wegslot {

X11Tray::X11Tray(const SymbolImages& images, TrayActions actions)
    : images_(images),
      actions_(std::move(actions)),
      entries_(trayEntries(actions_)) {
    for (const TrayEntry& entry : entries_) {
        QAction* const action = menu_.addAction(QString::fromStdString(entry.label.translated()));
        // Who chooses is not told: only what can press keys on this X server can.
        QObject::connect(action, &QAction::triggered, &menu_, [entry] {
            Log::write("\"" + entry.label.builtIn() + "\" gekozen in het menu van het icoon");
            entry.action();
        });
    }
    showEntries(false);
    icon_.setContextMenu(&menu_);
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                     [this](QSystemTrayIcon::ActivationReason reason) { clicked(reason); });
}

bool X11Tray::isThere() {
    return QGuiApplication::platformName() == QStringLiteral("xcb") &&
           QSystemTrayIcon::isSystemTrayAvailable();
}

void X11Tray::show(const TrayContent& content) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48})
        icon.addPixmap(QPixmap::fromImage(trayImage(images_, content.symbol, content.color, side)));
    icon_.setIcon(icon);
    icon_.setToolTip(QString::fromStdString(content.text));
    showEntries(content.isPaused);
    icon_.show();
}

void X11Tray::showEntries(bool isPaused) {
    const auto actions = menu_.actions();
    for (std::size_t i = 0; i < entries_.size(); ++i)
        actions[static_cast<qsizetype>(i)]->setVisible(entries_[i].isShown(isPaused));
}

void X11Tray::clicked(QSystemTrayIcon::ActivationReason reason) const {
    // The right button shows the menu.
    if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::MiddleClick) return;
    const QPoint place = icon_.geometry().center();
    actions_.open({.at = TrayPoint{place.x(), place.y()}});
}

} // namespace wegslot
