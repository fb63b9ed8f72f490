#include "coupling/bluez/later_removal.h"

#include <utility>

namespace wegslot::coupling {

LaterRemoval::LaterRemoval(dbus::Connection::Open open, dbus::Connection::Attach attach,
                           Scheduler& scheduler, dbus::Call removal, std::function<void()> done)
    : removal_(std::move(removal)),
      done_(std::move(done)),
      connection_(std::move(open), std::move(attach), scheduler,
                  dbus::Connection::Complaints::none),
      limit_(scheduler.after(patience, [this] { done_(); })) {
    connected_ = connection_.bus().onChange([this](dbus::Bus* bus) {
        call_.reset();
        if (bus == nullptr) return;
        call_ = bus->call(removal_, [this](const dbus::Message&) {
            limit_.reset();
            done_();
        });
    });
}

} // namespace wegslot::coupling
