#include "scanner/bluez/bluez_central.h"

#include <utility>

namespace wegslot {

using bluez::Daemon;

BluezCentral::BluezCentral(dbus::Connection& systemBus, Scheduler& scheduler)
    : scheduler_(scheduler),
      delayed_(scheduler) {
    connection_ = systemBus.bus().onChange([this](dbus::Bus* bus) { busChanged(bus); });
}

void BluezCentral::busChanged(dbus::Bus* bus) {
    discovery_.reset();
    watch_.reset();
    bus_ = bus;
    bluez::WatchListener& listener = *this;
    if (bus != nullptr) watch_ = std::make_unique<bluez::ObjectWatch>(*bus, listener);
    surroundingsChanged();
}

void BluezCentral::surroundingsChanged() {
    // A daemon or an adapter that went has forgotten the session, however soon it came back.
    if (!canScan()) discovery_.reset();
    // From the loop, once for all that one turn brings: the delegate may make calls of its own.
    evaluation_ = scheduler_.after(Nanoseconds{0}, [this] { evaluate(); });
}

void BluezCentral::evaluate() {
    const bluez::Surroundings before = surroundings_;
    adapter_.reset();
    surroundings_.adapter.reset();
    surroundings_.daemon = watch_ ? watch_->daemon() : Daemon::unknown;
    if (watch_) adapter_ = chosenAdapter(watch_->objects());
    if (adapter_) surroundings_.adapter = watch_->objects().adapters().at(*adapter_);
    if (surroundings_.daemon != Daemon::ready) {
        surroundings_.hadAdapter = false;
        discoveryDenied_ = false;
    }
    if (discoveryDenied_) surroundings_.daemon = Daemon::denied;
    if (adapter_) surroundings_.hadAdapter = true;

    if (graceFor(surroundings_) != graceFor(before)) awaitGrace();

    report(stateIn(surroundings_));
}

void BluezCentral::report(CentralState state) {
    // While the first answers are on their way there is nothing to say yet.
    const bool asking = bus_ != nullptr && (surroundings_.daemon == Daemon::unknown ||
                                            surroundings_.daemon == Daemon::loading);
    if (!reported_ && asking) return;

    const bool on = state == CentralState::poweredOn;
    const bool sameAdapter = adapter_ == reportedAdapter_;
    reportedAdapter_ = adapter_;
    if (!on || !sameAdapter) {
        discovery_.reset();
        scanWanted_ = false;
    }
    if (state == reported_ && (sameAdapter || !on)) {
        if (scanWanted_) scan();
        return;
    }
    reported_ = state;
    if (delegate_ != nullptr) delegate_->didUpdateState();
}

bool BluezCentral::canScan() const {
    if (!watch_ || watch_->daemon() != Daemon::ready || !adapter_) return false;
    const auto& adapters = watch_->objects().adapters();
    const auto found = adapters.find(*adapter_);
    return found != adapters.end() && found->second.powered;
}

void BluezCentral::awaitGrace() {
    surroundings_.graceIsOver = false;
    grace_.reset();
    const auto grace = graceFor(surroundings_);
    if (!grace) return;
    grace_ = scheduler_.after(*grace, [this] {
        surroundings_.graceIsOver = true;
        evaluate();
    });
}

void BluezCentral::scan() {
    scanWanted_ = true;
    if (!canScan() || discovery_) return;
    discovery_ = std::make_unique<bluez::Discovery>(*bus_, scheduler_, *adapter_, [this] {
        discoveryDenied_ = true;
        surroundingsChanged();
    });
    discovery_->start();
}

void BluezCentral::want(const Wanted&) {}

bool BluezCentral::changesAddress(const Uuid& id) const {
    const bluez::Device* const device = find(id);
    return device != nullptr && device->changing;
}

void BluezCentral::deviceReported(std::string_view path, const bluez::DeviceNews& news) {
    const bluez::Device* const device = watch_->objects().device(path);
    if (device == nullptr || !device->id || delegate_ == nullptr || !isOnAdapter(path)) return;
    if (news.formerId) delegate_->didIdentify(*news.formerId, *device->id);
    if (!news.rssi || !discovery_) return;
    delegate_->didDiscover({.id = *device->id,
                            .rssi = *news.rssi,
                            .peripheralName = device->name,
                            .manufacturerData = news.manufacturerData,
                            .localName = {}});
}

bool BluezCentral::isOnAdapter(std::string_view path) const {
    // One device heard by two adapters has two objects, and two strengths.
    return adapter_ && path.size() > adapter_->size() && path.starts_with(*adapter_) &&
           path[adapter_->size()] == '/';
}

const bluez::Device* BluezCentral::find(const Uuid& id) const {
    if (!watch_) return nullptr;
    for (const auto& [path, device] : watch_->objects().devices())
        if (device.id == id && isOnAdapter(path)) return &device;
    return nullptr;
}

std::vector<Uuid> BluezCentral::retrieve(const std::set<Uuid>& ids) {
    std::vector<Uuid> known;
    for (const Uuid& id : ids)
        if (find(id) != nullptr) known.push_back(id);
    return known;
}

PeripheralState BluezCentral::peripheralState(const Uuid&) const {
    return PeripheralState::disconnected;
}

std::optional<std::string> BluezCentral::peripheralName(const Uuid& id) const {
    const bluez::Device* const device = find(id);
    return device == nullptr ? std::nullopt : device->name;
}

void BluezCentral::connect(const Uuid& id) {
    later([id](CentralDelegate& delegate) { delegate.didFailToConnect(id); });
}

void BluezCentral::cancelConnection(const Uuid&) {}

void BluezCentral::readRSSI(const Uuid& id) {
    later([id](CentralDelegate& delegate) { delegate.didReadRSSI(id, std::nullopt); });
}

void BluezCentral::discoverServices(const Uuid& id, GattUuid) {
    later([id](CentralDelegate& delegate) { delegate.didDiscoverServices(id, {}); });
}

void BluezCentral::discoverCharacteristics(const Uuid& id, GattUuid service, GattUuid) {
    later([id, service](CentralDelegate& delegate) {
        delegate.didDiscoverCharacteristics(id, service, {});
    });
}

void BluezCentral::readValue(const Uuid& id, GattUuid characteristic) {
    later([id, characteristic](CentralDelegate& delegate) {
        delegate.didUpdateValue(id, characteristic, std::nullopt);
    });
}

void BluezCentral::later(std::function<void(CentralDelegate&)> tell) {
    delayed_.after(Nanoseconds{0}, [this, tell = std::move(tell)] {
        if (delegate_ != nullptr) tell(*delegate_);
    });
}

} // namespace wegslot
