// Whether the desktop is light or dark: what the desktop portal says on the session bus; without
// a portal, or when that has no preference, what the colours of the windows say.
#pragma once

#include "base/observable.h"
#include "dbus/connection.h"
#include "ui/scheme.h"

#include <optional>
#include <string>

namespace wegslot {

class ColorScheme {
public:
    /// `palette`: what the colours of the windows say.
    ColorScheme(dbus::Connection& sessionBus, const Observable<Scheme>& palette);
    ColorScheme(const ColorScheme&) = delete;
    ColorScheme& operator=(const ColorScheme&) = delete;

    /// Tells of changes only.
    [[nodiscard]] const Observable<Scheme>& scheme() const { return scheme_; }

private:
    void busChanged(dbus::Bus* bus);
    void ownerChanged(const std::optional<std::string>& owner);
    void read(const char* method);
    void prefer(std::optional<Scheme> preference);
    void publish(Scheme palette);

    const Observable<Scheme>& palette_;
    std::optional<Scheme> preferred_;
    Observable<Scheme> scheme_;
    dbus::Bus* bus_ = nullptr;
    Subscription reading_;
    Subscription changes_;
    Subscription owner_;
    Subscription paletteChanges_;
    Subscription connection_;
};

} // namespace wegslot
