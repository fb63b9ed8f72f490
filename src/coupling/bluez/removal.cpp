#include "coupling/bluez/removal.h"

#include <utility>

namespace wegslot::coupling {

Removal::Removal(dbus::Bus& bus, Scheduler& scheduler, const bluez::ObjectTree& objects,
                 std::string adapter, std::string path, std::function<void()> done)
    : bus_(bus),
      objects_(objects),
      adapter_(std::move(adapter)),
      path_(std::move(path)),
      done_(std::move(done)) {
    const bluez::Device* const device = objects_.device(path_);
    if (device != nullptr && device->connected)
        bus_.send({.destination = "org.bluez",
                   .path = path_,
                   .interface = bluez::deviceInterface,
                   .member = "Disconnect"});
    quiet_ = scheduler.after(quiet, [this] {
        isQuiet_ = true;
        changed();
    });
    limit_ = scheduler.after(patience, [this] { remove(); });
}

void Removal::changed() {
    const bluez::Device* const device = objects_.device(path_);
    if (isQuiet_ && (device == nullptr || !device->connected)) remove();
}

void Removal::remove() {
    if (std::exchange(isAsked_, true)) return;
    call_ = bus_.call({.destination = "org.bluez",
                       .path = adapter_,
                       .interface = "org.bluez.Adapter1",
                       .member = "RemoveDevice",
                       .arguments = {dbus::ObjectPath{path_}}},
                      [this](const dbus::Message&) { done_(); });
}

} // namespace wegslot::coupling
