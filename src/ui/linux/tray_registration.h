// Announces a status item to whoever collects those of the desktop (the watcher), again each time
// that a new one comes: desktops start theirs late and restart it.
#pragma once

#include "base/observable.h"
#include "base/scheduler.h"
#include "dbus/bus.h"

#include <optional>
#include <string>

namespace wegslot {

class TrayRegistration {
public:
    static constexpr auto watcher = "org.kde.StatusNotifierWatcher";

    /// A watcher may own its name before its object is there to be asked, or be too busy.
    static constexpr Nanoseconds retryInterval = std::chrono::seconds{2};

    /// Sets `accepted` when that changes. Everything must outlive this; the item is there already.
    TrayRegistration(dbus::Bus& bus, Scheduler& scheduler, Observable<bool>& accepted);
    TrayRegistration(const TrayRegistration&) = delete;
    TrayRegistration& operator=(const TrayRegistration&) = delete;
    ~TrayRegistration();

private:
    void ownerChanged(const std::optional<std::string>& owner);
    void announce();
    void set(bool accepted);

    dbus::Bus& bus_;
    Scheduler& scheduler_;
    Observable<bool>& accepted_;
    std::optional<std::string> announcedTo_;
    Subscription announcing_;
    Timer retry_;
    Subscription owner_;
};

} // namespace wegslot
