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
      actions_(std::move(actions)) {
    const auto entry = [this](const QString& label, std::function<void()> action) {
        QObject::connect(menu_.addAction(label), &QAction::triggered, &menu_, std::move(action));
    };
    entry(QStringLiteral("Open Wegslot"), [this] { actions_.open({.at = std::nullopt}); });
    // Who chooses is not told: only what can press keys on this X server can.
    const auto logged = [](const char* label, const std::function<void()>& action) {
        return [label, action] {
            Log::write("\"" + std::string(label) + "\" gekozen in het menu van het icoon");
            action();
        };
    };
    entry(QStringLiteral("Nu locken"), logged("Nu locken", actions_.lock));
    entry(QStringLiteral("Stop"), logged("Stop", actions_.quit));
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
    icon_.show();
}

void X11Tray::clicked(QSystemTrayIcon::ActivationReason reason) const {
    // The right button shows the menu.
    if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::MiddleClick) return;
    const QPoint place = icon_.geometry().center();
    actions_.open({.at = TrayPoint{place.x(), place.y()}});
}

} // namespace wegslot
