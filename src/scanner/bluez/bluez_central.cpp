#include "scanner/bluez/bluez_central.h"

#include "log/log.h"

#include <utility>

namespace wegslot {

using bluez::Daemon;
using bluez::Hearing;

BluezCentral::BluezCentral(dbus::Connection& systemBus, Scheduler& scheduler, const Clock& clock,
                           bluez::Links& links, AddressResolver& resolver)
    : systemBus_(systemBus),
      scheduler_(scheduler),
      clock_(clock),
      links_(links),
      resolver_(resolver),
      connections_(tell_, *this, links, scheduler, clock),
      gatt_(tell_, scheduler),
      schedule_(*this, scheduler, clock),
      delayed_(scheduler) {
    identities_ = resolver.onChange([this] { resolveAnew(); });
    connection_ = systemBus.bus().onChange([this](dbus::Bus* bus) { busChanged(bus); });
}

// --- Who is there -------------------------------------------------------------------------------

void BluezCentral::busChanged(dbus::Bus* bus) {
    dropRadio();
    sleep_.reset();
    watch_.reset();
    bus_ = bus;
    if (bus != nullptr) {
        bluez::WatchListener& listener = *this;
        watch_ = std::make_unique<bluez::ObjectWatch>(*bus, scheduler_, listener, resolver_);
        sleep_ = bus->onSignal("org.freedesktop.login1",
                               {.interface = "org.freedesktop.login1.Manager",
                                .member = "PrepareForSleep",
                                .path = "/org/freedesktop/login1"},
                               [this](const dbus::Message& message) {
                                   if (message.read().boolean() == false) wokeUp();
                               });
    }
    surroundingsChanged();
}

void BluezCentral::surroundingsChanged() {
    // A daemon or an adapter that went has forgotten the session, however soon it came back.
    if (!canScan()) dropRadio();
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
    if (isUndecided(state)) return;
    const Radio now{state, adapter_};
    if (now.isOn()) renewal_.reset();
    if (!now.goesOnAfter(reported_)) giveUpRadio();
    const bool isNews = now.isNewsAfter(reported_);
    reported_ = now;
    if (isNews) return tell_(&CentralDelegate::didUpdateState);
    if (!scanWanted_) return;
    takeRadio();
    listenForKeys(); // the adapter may offer more than it did
}

bool BluezCentral::isUndecided(CentralState state) const {
    // While the first answers are on their way there is nothing to say yet.
    // A new connection to the bus is back in a moment; nothing has happened to the radio.
    const bool isRenewing = renewal_ && state != CentralState::poweredOn;
    return (!reported_ && isAsking()) || isRenewing;
}

void BluezCentral::giveUpRadio() {
    connections_.leave(linksThen()); // an adapter that may stay
    dropRadio();
    scanWanted_ = false;
}

Handle BluezCentral::lend() {
    surroundings_.isLent = true;
    loan_ = scheduler_.after(longestLoan, [this] { takeBack(); });
    connections_.leave(linksThen());
    surroundingsChanged();
    return Handle{[this, loan = ++loans_] {
        if (loan == loans_) takeBack();
    }};
}

void BluezCentral::takeBack() {
    loan_.reset();
    surroundings_.isLent = false;
    surroundingsChanged();
}

bluez::Connections::LinksThen BluezCentral::linksThen() const {
    using LinksThen = bluez::Connections::LinksThen;
    return renewal_ || surroundings_.isLent ? LinksThen::kept : LinksThen::forgotten;
}

bool BluezCentral::canScan() const {
    if (surroundings_.isLent) return false;
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

// --- Listening ----------------------------------------------------------------------------------

void BluezCentral::scan() {
    scanWanted_ = true;
    takeRadio();
}

void BluezCentral::takeRadio() {
    if (!canScan() || discovery_) return;
    bluez::Discovery::Listener& listener = *this;
    discovery_ = std::make_unique<bluez::Discovery>(*bus_, scheduler_, *adapter_, listener);
    connections_.setRadio(*bus_, watch_->objects(), *adapter_);
    gatt_.setRadio(*bus_, *watch_, *adapter_);
    if (!std::exchange(toldUnreadable_, !links_.canRead(*adapter_)) && toldUnreadable_)
        Log::write("Signaal van verbindingen niet te lezen: sleutels worden alleen beluisterd");
    listenForKeys();
    schedule_.start();
}

void BluezCentral::dropRadio() {
    if (!discovery_) return;
    discovering(false);
    schedule_.stop();
    monitorAdvertisements(false);
    discovery_.reset();
    readings_.clear();
    measured_.clear();
    gatt_.clearRadio();
    connections_.clearRadio(linksThen());
}

void BluezCentral::want(const Wanted& wanted) {
    wanted_ = wanted;
    connections_.setKeys(wanted.connect);
    listenForKeys();
}

void BluezCentral::catchUp() {
    if (bus_ != nullptr) bus_->process();
}

void BluezCentral::listenForKeys() {
    std::set<Uuid> keys = wanted_.hear;
    for (const Uuid& id : wanted_.connect)
        if (!measured_.contains(id)) keys.insert(id);
    monitorAdvertisements(wanted_.list || !keys.empty());
    schedule_.want(wanted_.list, std::move(keys));
}

void BluezCentral::monitorAdvertisements(bool wanted) {
    const bool offered = discovery_ && surroundings_.adapter && surroundings_.adapter->hasMonitors;
    if ((wanted && offered) == (monitor_ != nullptr)) return;
    if (monitor_) {
        monitor_.reset();
        return schedule_.setUnfiltered(false);
    }
    monitor_ = std::make_unique<bluez::AdvertisementMonitor>(
        *bus_, *adapter_, [this](bool active) { schedule_.setUnfiltered(active); });
}

void BluezCentral::startScan() { discovery_->start(); }

void BluezCentral::restartScan() { discovery_->restart(); }

void BluezCentral::stopScan() {
    discovery_->stop();
    connections_.radioIsFree();
}

void BluezCentral::discovering(bool discovering) {
    hearing_.listen(discovering, clock_.now());
    deafness_.reset();
    if (discovering) treatDeafness();
}

void BluezCentral::discoveryDenied() {
    discoveryDenied_ = true;
    surroundingsChanged();
}

void BluezCentral::treatDeafness() {
    const TimePoint now = clock_.now();
    if (const auto remedy = hearing_.remedy(now); remedy && discovery_) {
        switch (*remedy) {
        case Hearing::Remedy::restartScan:
            Log::write("Radio hoort niets meer: scan opnieuw gestart");
            discovery_->restart();
            break;
        case Hearing::Remedy::renewDiscovery:
            Log::write("Radio hoort niets meer: zoeken gestopt en opnieuw gestart");
            discovery_->renew();
            break;
        case Hearing::Remedy::renewConnection:
            Log::write("Radio hoort niets meer: nieuwe verbinding met de systeembus");
            renewal_ = scheduler_.after(renewal, [this] {
                renewal_.reset();
                evaluate();
            });
            systemBus_.renew();
            break;
        }
    }
    if (const auto due = hearing_.due())
        deafness_ = scheduler_.after(*due - now, [this] { treatDeafness(); });
}

void BluezCentral::wokeUp() {
    if (!discovery_) return;
    // The kernel ended the scan before the sleep, and BlueZ begins another only after a while.
    discovery_->renew();
    schedule_.start();
    connections_.arrangeRadio();
}

// --- Devices ------------------------------------------------------------------------------------

void BluezCentral::deviceReported(std::string_view path, const bluez::DeviceNews& news) {
    const bluez::Device* device = watch_->objects().device(path);
    if (device == nullptr || !device->id || !adapter_ || !bluez::isUnder(path, *adapter_)) return;
    const Uuid id = *device->id; // whoever is told may change what the device is
    if (news.formerId) moved(*news.formerId, id);
    if (news.standing) {
        connections_.changed(id);
        gatt_.changed(id);
    }
    // The strength of a connection that begins is not one of an advertisement.
    if (!news.rssi || !discovery_) return;
    if (hearing_.heard(id, clock_.now())) Log::write("Radio hoort weer apparaten");
    device = watch_->objects().device(path);
    if (device != nullptr)
        tell_(&CentralDelegate::didDiscover,
              Advertisement{.id = id,
                            .rssi = *news.rssi,
                            .peripheralName = device->name,
                            .manufacturerData = news.manufacturerData,
                            .localName = {}});
    schedule_.heard(id);
    connections_.heard(id);
}

void BluezCentral::moved(const Uuid& from, const Uuid& to) {
    tell_(&CentralDelegate::didIdentify, from, to);
    connections_.moved(from, to);
}

void BluezCentral::resolveAnew() {
    if (!watch_) return;
    for (const auto& [path, formerId] : watch_->resolveAnew()) {
        const bluez::Device* const device = watch_->objects().device(path);
        if (device != nullptr && adapter_ && bluez::isUnder(path, *adapter_))
            moved(formerId, *device->id);
    }
}

void BluezCentral::deviceRemoved(std::string_view path, const Uuid& id) {
    if (adapter_ && bluez::isUnder(path, *adapter_)) connections_.changed(id);
}

void BluezCentral::linkEnded(std::string_view path, std::string_view name) {
    const bluez::Device* const device = watch_->objects().device(path);
    if (device != nullptr && device->id && adapter_ && bluez::isUnder(path, *adapter_))
        connections_.linkEnded(*device->id, name);
}

const bluez::Device* BluezCentral::find(const Uuid& id) const {
    if (!watch_ || !adapter_) return nullptr;
    const std::string* const path = watch_->objects().find(id, *adapter_);
    return path == nullptr ? nullptr : watch_->objects().device(*path);
}

bool BluezCentral::changesAddress(const Uuid& id) const {
    const bluez::Device* const device = find(id);
    return device != nullptr && device->changing && !device->resolved;
}

std::vector<Uuid> BluezCentral::retrieve(const std::set<Uuid>& ids) {
    return {ids.begin(), ids.end()};
}

PeripheralState BluezCentral::peripheralState(const Uuid& id) const {
    return connections_.state(id);
}

std::optional<std::string> BluezCentral::peripheralName(const Uuid& id) const {
    const bluez::Device* const device = find(id);
    return device == nullptr ? std::nullopt : device->name;
}

// --- Connections --------------------------------------------------------------------------------

void BluezCentral::cancelConnection(const Uuid& id) {
    readings_.erase(id);
    measured_.erase(id);
    gatt_.drop(id);
    connections_.cancel(id);
    listenForKeys();
}

void BluezCentral::readRSSI(const Uuid& id) {
    const bluez::Device* const device = find(id);
    const auto tell = [this, id](std::optional<int> rssi) { strengthRead(id, rssi); };
    if (device == nullptr || peripheralState(id) != PeripheralState::connected) {
        delayed_.after(Nanoseconds{0}, [tell] { tell(std::nullopt); });
        return;
    }
    readings_[id] = links_.read(*adapter_, device->address, tell);
}

void BluezCentral::strengthRead(const Uuid& id, std::optional<int> rssi) {
    readings_.erase(id);
    const bool changed = rssi ? measured_.insert(id).second : measured_.erase(id) > 0;
    if (changed) listenForKeys(); // what no link tells, advertisements may
    tell_(&CentralDelegate::didReadRSSI, id, rssi);
}

void BluezCentral::discoverServices(const Uuid& id, GattUuid service) {
    gatt_.discoverServices(id, service);
}

void BluezCentral::discoverCharacteristics(const Uuid& id, GattUuid service,
                                           GattUuid characteristic) {
    gatt_.discoverCharacteristics(id, service, characteristic);
}

void BluezCentral::readValue(const Uuid& id, GattUuid characteristic) {
    gatt_.readValue(id, characteristic);
}

void BluezCentral::radioNeeded() {
    schedule_.makeWay();
    if (!schedule_.isScanning()) connections_.radioIsFree();
}

void BluezCentral::linkLost(const Uuid& id) {
    readings_.erase(id);
    measured_.erase(id);
    gatt_.drop(id);
    listenForKeys();
}

} // namespace wegslot
