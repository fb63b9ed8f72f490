// Drives the buses and descriptors of a test: real messages, virtual timers. Nothing here waits
// for a duration; a test says what it waits for, and fails when that does not come at all.
#pragma once

#include "base/descriptors.h"
#include "base/virtual_time.h"
#include "dbus/connection.h"
#include "dbus/forgeries.h"
#include "tests/support/private_bus.h"

#include <functional>
#include <memory>
#include <vector>

namespace wegslot {

class BusLoop final : public Descriptors {
public:
    explicit BusLoop(PrivateBus::Policy policy = PrivateBus::Policy::anybody) : daemon(policy) {}

    /// Handles messages and what is due until `condition` holds; false when it does not within
    /// `onlyAHang`. Virtual time stands still but for what is due already.
    [[nodiscard]] bool runUntil(const std::function<bool()>& condition);

    /// Handles all that is under way now: what was sent before this call has been delivered to
    /// everybody and answered when it returns.
    void settle();

    /// Passes virtual time, handling messages before and after.
    void pass(Nanoseconds duration);

    /// A connection of its own to the bus, driven by this loop.
    [[nodiscard]] std::unique_ptr<dbus::Bus> connect();

    /// How a `dbus::Connection` opens this bus and is driven.
    [[nodiscard]] dbus::Connection::Open opener();
    [[nodiscard]] dbus::Connection::Attach attacher();

    /// Has the loop drive `bus` until the handle ends.
    [[nodiscard]] Handle attach(dbus::Bus& bus, std::function<void()> lost = {});

    [[nodiscard]] Subscription onReadable(int descriptor, std::function<void()> action) override;

    PrivateBus daemon;
    VirtualTime time{TimePoint{std::chrono::hours{1000}}};
    dbus::Forgeries forgeries{time};

private:
    struct Driven {
        dbus::Bus* bus;
        std::function<void()> lost;
        bool told = false;
    };

    struct Watched {
        int descriptor;
        std::function<void()> action;
        bool active = true;
    };

    void turn(int milliseconds);

    std::vector<std::shared_ptr<Driven>> driven_;
    std::vector<std::shared_ptr<Watched>> watched_;
};

} // namespace wegslot
