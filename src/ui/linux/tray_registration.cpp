#include "ui/linux/tray_registration.h"

namespace wegslot {

TrayRegistration::TrayRegistration(dbus::Bus& bus, Scheduler& scheduler, Observable<bool>& accepted)
    : bus_(bus),
      scheduler_(scheduler),
      accepted_(accepted) {
    owner_ = bus_.followOwner(
        watcher, [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

TrayRegistration::~TrayRegistration() { set(false); }

void TrayRegistration::ownerChanged(const std::optional<std::string>& owner) {
    // One that came while its owner was being asked for is told of twice.
    if (owner == announcedTo_) return;
    announcedTo_ = owner;
    announcing_.reset();
    retry_.reset();
    set(false);
    if (owner) announce();
}

void TrayRegistration::announce() {
    // By the connection's own name: a name to own in addition is what sandboxes refuse.
    announcing_ = bus_.call({.destination = *announcedTo_,
                             .path = "/StatusNotifierWatcher",
                             .interface = watcher,
                             .member = "RegisterStatusNotifierItem",
                             .arguments = {bus_.uniqueName()}},
                            [this](const dbus::Message& answer) {
                                if (!answer.error()) return set(true);
                                retry_ = scheduler_.after(retryInterval, [this] { announce(); });
                            });
}

void TrayRegistration::set(bool accepted) {
    if (accepted != accepted_.get()) accepted_.set(accepted);
}

} // namespace wegslot
