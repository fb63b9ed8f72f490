// Has BlueZ forget one device, with its bond: ends its connection first and lets two seconds pass,
// because BlueZ 5.66 has been seen to crash when a device that had just bonded was removed at once.
#pragma once

#include "base/scheduler.h"
#include "dbus/bus.h"
#include "scanner/bluez/object_tree.h"

#include <functional>
#include <string>

namespace wegslot::coupling {

class Removal {
public:
    /// Removed two seconds after it had bonded, no device has had it crash.
    static constexpr Nanoseconds quiet = std::chrono::seconds{2};

    /// BlueZ ends a connection two seconds after it is asked to.
    static constexpr Nanoseconds patience = std::chrono::seconds{5};

    /// Begins at once; `done` is called from the loop. All must outlive this.
    Removal(dbus::Bus& bus, Scheduler& scheduler, const bluez::ObjectTree& objects,
            std::string adapter, std::string path, std::function<void()> done);
    Removal(const Removal&) = delete;
    Removal& operator=(const Removal&) = delete;

    /// Something is not what it was.
    void changed();

private:
    void remove();

    dbus::Bus& bus_;
    const bluez::ObjectTree& objects_;
    std::string adapter_;
    std::string path_;
    std::function<void()> done_;
    bool isQuiet_ = false;
    bool isAsked_ = false;
    Subscription call_;
    Timer quiet_;
    Timer limit_;
};

} // namespace wegslot::coupling
