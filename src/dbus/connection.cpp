#include "dbus/connection.h"

#include "log/log.h"

#include <utility>

namespace wegslot::dbus {

Connection::Open systemBus(Forgeries& forgeries) {
    return [&forgeries] { return Bus::openSystem(forgeries); };
}

Connection::Open sessionBus(Forgeries& forgeries, Bus::Files files) {
    return [&forgeries, files] { return Bus::openSession(forgeries, files); };
}

Connection::Connection(Open open, Attach attach, Scheduler& scheduler, Complaints complaints)
    : open_(std::move(open)),
      attach_(std::move(attach)),
      scheduler_(scheduler),
      mayComplain_(complaints == Complaints::logged) {
    timer_ = scheduler_.after(Nanoseconds{0}, [this] { connect(); });
}

void Connection::connect() {
    auto opened = open_();
    if (!opened) {
        // Once for each time that it is gone, however long that takes.
        if (mayComplain_ && !std::exchange(complained_, true))
            Log::say(message("Geen verbinding met de %1", {opened.failure().message}));
        bus_.set(nullptr);
        timer_ = scheduler_.after(retryInterval, [this] { connect(); });
        return;
    }
    complained_ = false;
    owned_ = *std::move(opened);
    // Not from within the bus's own processing, which is still running when it notices.
    attached_ = attach_(
        *owned_, [this] { timer_ = scheduler_.after(Nanoseconds{0}, [this] { disconnect(); }); });
    bus_.set(owned_.get());
}

void Connection::renew() {
    if (!owned_) return;
    timer_ = scheduler_.after(Nanoseconds{0}, [this] {
        close();
        connect();
    });
}

void Connection::close() {
    bus_.set(nullptr);
    attached_.reset();
    owned_.reset();
}

void Connection::disconnect() {
    close();
    timer_ = scheduler_.after(retryInterval, [this] { connect(); });
}

} // namespace wegslot::dbus
