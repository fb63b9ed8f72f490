#include "coupling/bluez/pairable.h"

#include "log/log.h"

#include <utility>

namespace wegslot::coupling {

dbus::Call pairableCall(const std::string& adapter, bool pairable) {
    return {
        .destination = "org.bluez",
        .path = adapter,
        .interface = "org.freedesktop.DBus.Properties",
        .member = "Set",
        .arguments = {std::string("org.bluez.Adapter1"), std::string("Pairable"),
                      dbus::Variant{pairable}},
    };
}

PairableRepair::PairableRepair(dbus::Connection::Open open, dbus::Connection::Attach attach,
                               Scheduler& scheduler, const PairableNote& note,
                               std::function<void()> done)
    : scheduler_(scheduler),
      note_(note),
      done_(std::move(done)),
      connection_(std::move(open), std::move(attach), scheduler,
                  dbus::Connection::Complaints::none),
      end_(scheduler.after(patience, [this] { done_(); })) {
    connected_ = connection_.bus().onChange([this](dbus::Bus* bus) {
        calls_.clear();
        watch_.reset();
        bus_ = bus;
        bluez::WatchListener& listener = *this;
        if (bus != nullptr)
            watch_ = std::make_unique<bluez::ObjectWatch>(*bus, scheduler_, listener, nobody_);
    });
}

PairableRepair::~PairableRepair() = default;

void PairableRepair::surroundingsChanged() {
    look_ = scheduler_.after(Nanoseconds{0}, [this] { look(); });
}

void PairableRepair::look() {
    const auto addresses = note_.adapters();
    if (addresses.empty()) return done_();
    if (!watch_ || watch_->daemon() != bluez::Daemon::ready) return;
    for (const auto& [path, adapter] : watch_->objects().adapters()) {
        if (!addresses.contains(adapter.address) || calls_.contains(adapter.address)) continue;
        if (adapter.pairable) {
            putBack(path, adapter.address);
        } else {
            note_.remove(adapter.address); // somebody else was so kind
            surroundingsChanged();
        }
    }
}

void PairableRepair::putBack(const std::string& path, const std::string& address) {
    calls_[address] =
        bus_->call(pairableCall(path, false), [this, address](const dbus::Message& answer) {
            calls_.erase(address);
            if (answer.error()) return; // until something changes
            Log::write("Koppelbaarheid van " + address + " teruggezet");
            note_.remove(address);
            surroundingsChanged();
        });
}

} // namespace wegslot::coupling
