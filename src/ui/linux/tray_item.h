// Wegslot's icon among those of the desktop: a StatusNotifierItem on the session bus. Knows no
// toolkit; the pictures come from whoever can paint. Hosts that draw the icon ask for everything
// and are told of changes.
#pragma once

#include "base/observable.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "dbus/object.h"
#include "ui/linux/tray_menu.h"
#include "ui/linux/tray_registration.h"
#include "ui/tray_actions.h"
#include "ui/tray_content.h"
#include "ui/tray_picture.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

class TrayItem {
public:
    static constexpr auto path = "/StatusNotifierItem";
    static constexpr auto interfaceName = "org.kde.StatusNotifierItem";

    /// What bars of usual heights draw, at once and twice the density.
    static constexpr std::array sides{16, 22, 24, 32, 44, 48, 64};

    /// `sessionBus`: one that owns no name that others may talk to; whoever reaches it may choose
    /// from the menu.
    TrayItem(dbus::Connection& sessionBus, Scheduler& scheduler, TrayActions actions,
             TrayPainter painter);
    TrayItem(const TrayItem&) = delete;
    TrayItem& operator=(const TrayItem&) = delete;

    /// Tells the hosts of what has changed, if anything.
    void show(const TrayContent& content);

    /// Whether a desktop has taken the icon. Tells of changes only.
    [[nodiscard]] const Observable<bool>& isTaken() const { return taken_; }

private:
    void busChanged(dbus::Bus* bus);
    [[nodiscard]] dbus::Interface interface();
    [[nodiscard]] std::vector<dbus::Property> properties();
    [[nodiscard]] std::vector<dbus::Method> methods();
    void writePictures(dbus::Writer& writer);
    [[nodiscard]] TrayActions withToken(TrayActions actions);
    void tell(const char* signal, std::vector<std::string> properties);
    void open(std::optional<TrayPoint> at);

    Scheduler& scheduler_;
    TrayActions actions_;
    TrayPainter painter_;
    TrayContent content_;
    std::vector<TrayPicture> pictures_; ///< of the content, painted when first asked for
    std::string activationToken_;       ///< for the next click
    TrayMenu menu_;
    Observable<bool> taken_{false};
    dbus::Bus* bus_ = nullptr;
    Subscription shownItem_;
    Subscription shownMenu_;
    std::optional<TrayRegistration> registration_;
    Subscription connection_;
};

} // namespace wegslot
