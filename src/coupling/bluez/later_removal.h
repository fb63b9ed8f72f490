// Has BlueZ forget a device some time after everything else was put back. Has a connection of its
// own, which ends with it.
#pragma once

#include "base/scheduler.h"
#include "dbus/connection.h"

#include <functional>

namespace wegslot::coupling {

class LaterRemoval {
public:
    /// A bus and a daemon that are well take milliseconds.
    static constexpr Nanoseconds patience = std::chrono::seconds{5};

    /// `done` is called once, from the loop, whatever came of `removal`.
    LaterRemoval(dbus::Connection::Open open, dbus::Connection::Attach attach, Scheduler& scheduler,
                 dbus::Call removal, std::function<void()> done);
    LaterRemoval(const LaterRemoval&) = delete;
    LaterRemoval& operator=(const LaterRemoval&) = delete;

private:
    dbus::Call removal_;
    std::function<void()> done_;
    dbus::Connection connection_;
    Subscription call_;
    Timer limit_;
    Subscription connected_;
};

} // namespace wegslot::coupling
