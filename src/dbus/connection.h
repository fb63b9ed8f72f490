// A bus that may not be there yet, or may go away: connects as soon as it can, tells its users, and
// keeps trying for as long as it lives.
#pragma once

#include "base/observable.h"
#include "base/scheduler.h"
#include "dbus/bus.h"

#include <functional>
#include <memory>
#include <string>

namespace wegslot::dbus {

/// How to open the system bus or the session's, whenever a connection wants to.
[[nodiscard]] std::function<Result<std::unique_ptr<Bus>>()> systemBus(Forgeries& forgeries);
[[nodiscard]] std::function<Result<std::unique_ptr<Bus>>()>
sessionBus(Forgeries& forgeries, Bus::Files files = Bus::Files::none);

class Connection {
public:
    using Open = std::function<Result<std::unique_ptr<Bus>>()>;
    /// Has a loop drive the bus until the handle ends; calls `lost` when the bus has closed.
    using Attach = std::function<Handle(Bus& bus, std::function<void()> lost)>;

    /// Between two attempts: soon enough for a person who waits, too rare to cost anything.
    static constexpr Nanoseconds retryInterval = std::chrono::seconds{5};

    /// Whether the log is told that the bus is not there. One of several connections to the same
    /// bus says it for all.
    enum class Complaints { logged, none };

    /// Makes the first attempt at the next turn of the loop.
    Connection(Open open, Attach attach, Scheduler& scheduler,
               Complaints complaints = Complaints::logged);

    /// The bus, or null while there is none. Listeners that are told of null may not use the bus
    /// they had; it goes right after.
    [[nodiscard]] const Observable<Bus*>& bus() const { return bus_; }

    /// Gives up the bus there is and connects anew, at the next turn of the loop: to whoever is on
    /// the other side another client. Nothing while there is no bus.
    void renew();

private:
    void connect();
    void close();
    void disconnect();

    Open open_;
    Attach attach_;
    Scheduler& scheduler_;
    std::unique_ptr<Bus> owned_;
    bool mayComplain_;
    bool complained_ = false;
    Observable<Bus*> bus_{nullptr};
    Handle attached_;
    Timer timer_;
};

} // namespace wegslot::dbus
