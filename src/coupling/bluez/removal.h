// Has BlueZ forget one device, with its bond: ends its connection first, because BlueZ 5.66 has
// been seen to crash when a device that had just bonded was removed while it was connected.
#pragma once

#include "base/scheduler.h"
#include "dbus/bus.h"
#include "scanner/bluez/object_tree.h"

#include <functional>
#include <string>

namespace wegslot::coupling {

class Removal {
public:
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
    bool isWaiting_ = true; ///< for its connection to end
    Subscription call_;
    Timer limit_;
};

} // namespace wegslot::coupling
