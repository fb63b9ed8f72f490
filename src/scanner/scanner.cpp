#include "scanner/scanner.h"

#include "base/text.h"
#include "log/log.h"
#include "scanner/log_name.h"
#include "scanner/radio_words.h"

#include <array>
#include <utility>

namespace wegslot {

Scanner::Scanner(BluetoothCentral& central, Scheduler& scheduler, const Clock& clock,
                 Connecting connecting)
    : central_(central),
      clock_(clock),
      connections_(central, scheduler, state_, connecting),
      identifier_(central, scheduler, clock, state_, devices_, connections_) {
    central_.setDelegate(this);
    rssiTimer_ = scheduler.every(KeyConnections::pollInterval, [this] { connections_.pollRSSI(); });
}

Scanner::~Scanner() { central_.setDelegate(nullptr); }

Message Scanner::stateDescription() const {
    const auto authorization = central_.authorization();
    if (authorization == CentralAuthorization::restricted ||
        authorization == CentralAuthorization::denied)
        return radioWords(CentralState::unauthorized);
    if (auto words = central_.stateWords()) return *std::move(words);
    return radioWords(state_.get());
}

void Scanner::refreshSnapshot() {
    catchingUp_ = true;
    central_.catchUp();
    catchingUp_ = false;
    const TimePoint now = clock_.now();
    release(devices_.forgetStale(watchedIDs(), now));
    snapshot_.set(devices_.snapshot(now));
}

void Scanner::release(const std::vector<Uuid>& forgotten) {
    for (const Uuid& id : forgotten)
        if (id != identifier_.identifying()) connections_.release(id);
}

void Scanner::makeRoom(const Uuid& newest) {
    release(devices_.makeRoom([this, newest](const Uuid& id) {
        return id == newest || watchedIDs().contains(id) || id == identifier_.identifying() ||
               central_.peripheralState(id) == PeripheralState::connected;
    }));
}

std::optional<TimePoint> Scanner::lastSeen(const Uuid& id) const {
    const SeenDevice* const device = devices_.find(id);
    return device == nullptr ? std::nullopt : std::optional(device->lastSeen);
}

std::optional<Dbm> Scanner::smoothedRSSI(const Uuid& id, Seconds window) const {
    return devices_.smoothedRSSI(id, rounded(window), clock_.now());
}

std::vector<SignalHistory::Sample> Scanner::samplesSince(const Uuid& id, TimePoint since) const {
    return devices_.samplesSince(id, since);
}

void Scanner::setWatchedIDs(std::set<Uuid> ids) {
    if (connections_.setWatched(std::move(ids))) keysChanged();
}

void Scanner::setPassiveIDs(std::set<Uuid> ids) {
    if (connections_.setPassive(std::move(ids))) keysChanged();
}

Subscription Scanner::tryOut(const Uuid& id) {
    trial_ = id;
    want();
    return Subscription{[this] {
        trial_.reset();
        want();
    }};
}

void Scanner::setDiscoveryActive(bool active) {
    discovery_.set(active);
    identifier_.setDiscoveryActive(active);
    want();
}

void Scanner::keysChanged() {
    want();
    connections_.update(identifier_.identifying());
}

void Scanner::want() {
    // How a device is heard shows only while the radio listens all the time, as for a list.
    Wanted wanted{.list = discoveryActive() || trial_.has_value(),
                  .connect = connections_.active(),
                  .hear = connections_.onlyHeard()};
    if (trial_ && !wanted.connect.contains(*trial_)) wanted.hear.insert(*trial_);
    central_.want(wanted);
}

std::string Scanner::label(const Uuid& id) const {
    const SeenDevice* const device = devices_.find(id);
    return (device == nullptr ? "?" : nameForLog(device->displayName().builtIn())) + " (" +
           id.text().substr(0, 8) + ")";
}

void Scanner::didUpdateState() {
    state_.set(central_.state());
    const int number = static_cast<int>(state_.get());
    Log::write("Bluetooth-status: " + stateDescription().builtIn() + " (" + std::to_string(number) +
               ")");
    if (!isPoweredOn()) return;
    central_.scan();
    connections_.update(identifier_.identifying());
}

void Scanner::didDiscover(const Advertisement& advertisement) {
    if (!isMeasured(advertisement.rssi) || !isWanted(advertisement)) return;

    auto& device = devices_.addSample(advertisement.id, advertisement.rssi, clock_.now());
    if (devices_.isTooLarge()) makeRoom(advertisement.id);
    if (!std::exchange(device.isHeld, true)) connections_.hold(advertisement.id);
    // What this advertisement lacks, an earlier one may have told.
    if (const auto type = advertisement.continuityType()) device.continuityType = type;
    if (const auto name = advertisement.name(); !name.empty()) device.name = name;
    logFirstSight(device, advertisement.rssi);
    if (identifier_.discoveryActive()) identifier_.identifyNext();
}

bool Scanner::isWanted(const Advertisement& advertisement) const {
    if (watchedIDs().contains(advertisement.id) || advertisement.id == trial_) return true;
    const auto type = advertisement.continuityType();
    if (!isAppleType(type)) return includeOtherDevices_ && !advertisement.name().empty();
    // Earphones and trackers: many in a room, none of them a key.
    return type != 0x07 && type != 0x12;
}

void Scanner::logFirstSight(DeviceTable::Record& device, int rssi) {
    if (rssi < loggedFrom || std::exchange(device.isLogged, true)) return;
    // Who is logged once more after so many others does no harm; a list without an end does.
    constexpr std::size_t mostLogged = 100'000;
    if (loggedDevices_.size() >= mostLogged) loggedDevices_.clear();
    if (!loggedDevices_.insert(device.id).second) return;
    Log::write(
        "Gezien: " + device.id.text() + " naam=" + nameForLog(device.name.value_or("-")) +
        " type=" + (device.continuityType ? "0x" + hexadecimal(*device.continuityType, 2) : "-") +
        " rssi=" + std::to_string(rssi));
}

void Scanner::didConnect(const Uuid& id) {
    identifier_.didConnect(id);
    if (!connections_.isActive(id)) return;
    Log::write("Verbonden met sleutel " + label(id));
    central_.readRSSI(id);
}

void Scanner::didFailToConnect(const Uuid& id) {
    identifier_.didLose(id);
    if (connections_.isActive(id)) connections_.reconnectLater(id);
}

void Scanner::didDisconnect(const Uuid& id, const std::optional<std::string>& reason) {
    identifier_.didLose(id);
    connections_.strengthRead(id, false);
    if (!connections_.isActive(id)) return;
    Log::write("Verbinding met sleutel " + label(id) + " verbroken" +
               (reason ? ": " + printable(*reason) : ""));
    connections_.reconnectLater(id);
}

void Scanner::didReadRSSI(const Uuid& id, std::optional<int> rssi) {
    const bool told = rssi && isMeasured(*rssi);
    connections_.strengthRead(id, told);
    if (told) devices_.addSample(id, *rssi, clock_.now());
}

void Scanner::didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) {
    identifier_.didDiscoverServices(id, services);
}

void Scanner::didDiscoverCharacteristics(const Uuid& id, GattUuid,
                                         std::span<const GattUuid> characteristics) {
    identifier_.didDiscoverCharacteristics(id, characteristics);
}

void Scanner::didUpdateValue(const Uuid& id, GattUuid characteristic,
                             const std::optional<std::string_view>& value) {
    identifier_.didUpdateValue(id, characteristic, value);
}

void Scanner::didIdentify(const Uuid& from, const Uuid& to) {
    devices_.move(from, to);
    identifier_.move(from, to);
    if (loggedDevices_.erase(from) > 0) loggedDevices_.insert(to);
    if (!connections_.holds(from)) return;
    connections_.release(from);
    connections_.hold(to);
}

} // namespace wegslot
