// How long the user of GNOME has been idle, as its window manager Mutter reports on the session
// bus, under Wayland and X11 alike. Asking never starts it.
#pragma once

#include "dbus/connection.h"
#include "platform/activity_sources.h"

#include <optional>
#include <string>

namespace wegslot {

class MutterIdle final : public IdleSource {
public:
    explicit MutterIdle(dbus::Connection& sessionBus);

    [[nodiscard]] std::string name() const override { return "Mutter"; }
    [[nodiscard]] bool isThere() const override { return running_; }
    [[nodiscard]] std::optional<Seconds> idleTime() override;

private:
    void busChanged(dbus::Bus* bus);

    dbus::Bus* bus_ = nullptr;
    bool running_ = false;
    Subscription owner_;
    Subscription connection_;
};

} // namespace wegslot
