#include "tests/support/fake_central.h"

#include <array>
#include <utility>

namespace wegslot {
namespace {

constexpr GattUuid genericAccess{0x1800};
constexpr GattUuid deviceInformation{0x180A};
constexpr GattUuid modelNumber{0x2A24};

} // namespace

FakeCentral::FakeCentral(VirtualTime& time, Controller controller, std::uint64_t seed)
    : time_(time),
      controller_(controller),
      dice_(seed),
      schedule_(*this, time, time),
      delayed_(time) {}

// --- What happens around the radio --------------------------------------------------------------

void FakeCentral::setPowered(bool powered) {
    state_ = powered ? CentralState::poweredOn : CentralState::poweredOff;
    if (!powered) {
        schedule_.stop();
        listeningFrom_.reset();
        attempt_.reset();
        const auto standings = standings_; // whoever is told may ask for connections anew
        for (const auto& [id, standing] : standings)
            if (standing != PeripheralState::connecting) lose(id, std::nullopt);
    }
    if (delegate_ != nullptr) delegate_->didUpdateState();
}

void FakeCentral::add(const Uuid& id, DeviceSpec spec, Nanoseconds phase) {
    Device& device = devices_[id];
    device.spec = std::move(spec);
    device.known = device.spec.isBonded();
    advertiseAfter(id, phase);
}

void FakeCentral::silence(const Uuid& id) {
    Device& device = devices_.at(id);
    device.speaks = false;
    device.next.reset();
    if (standings_.contains(id) && standings_.at(id) != PeripheralState::connecting)
        device.next = time_.after(supervision, [this, id] { lose(id, "timeout"); });
}

void FakeCentral::speak(const Uuid& id) {
    Device& device = devices_.at(id);
    if (!std::exchange(device.speaks, true)) advertiseAfter(id, {});
}

void FakeCentral::dropLink(const Uuid& id, const std::optional<std::string>& reason) {
    if (peripheralState(id) == PeripheralState::connected) lose(id, reason);
}

void FakeCentral::bond(const Uuid& from, const Uuid& to) {
    Device device = std::move(devices_.extract(from).mapped());
    device.spec.identity = DeviceSpec::Identity::rotating;
    device.known = true;
    devices_[to] = std::move(device);
    if (auto standing = standings_.extract(from)) {
        standing.key() = to;
        standings_.insert(std::move(standing));
    }
    if (attempt_ && attempt_->id == from) giveUpAttempt();
    if (devices_.at(to).next) advertiseAfter(to, {}); // what was to come was to come of `from`
    if (delegate_ != nullptr) delegate_->didIdentify(from, to);
}

// --- Listening ----------------------------------------------------------------------------------

void FakeCentral::setDelegate(CentralDelegate* delegate) {
    delegate_ = delegate;
    if (state_ == CentralState::unknown) return;
    later([this] {
        if (delegate_ != nullptr) delegate_->didUpdateState();
    });
}

void FakeCentral::scan() {
    if (state_ != CentralState::poweredOn || schedule_.isRunning()) return;
    listenForKeys();
    schedule_.start();
}

void FakeCentral::want(const Wanted& wanted) {
    wanted_ = wanted;
    listenForKeys();
}

void FakeCentral::listenForKeys() {
    std::set<Uuid> keys = wanted_.hear;
    for (const Uuid& id : wanted_.connect) {
        const bool linkTells = peripheralState(id) == PeripheralState::connected &&
                               devices_.at(id).spec.linkRssi.has_value();
        if (!linkTells) keys.insert(id);
    }
    schedule_.want(wanted_.list, std::move(keys));
}

void FakeCentral::startScan() {
    const bool slowly = dice_.chance(50);
    listeningFrom_ = time_.now() + (slowly ? controller_.startUp : upTo(controller_.startUp));
    for (auto& [id, device] : devices_)
        device.reported = false;
}

void FakeCentral::restartScan() { startScan(); }

void FakeCentral::stopScan() {
    listeningFrom_.reset();
    if (attempt_ && !attempt_->begun) beginAttempt();
}

bool FakeCentral::listens() const {
    const bool connecting = attempt_ && attempt_->begun;
    return listeningFrom_ && !connecting && time_.now() >= *listeningFrom_;
}

void FakeCentral::advertiseAfter(const Uuid& id, Nanoseconds delay) {
    devices_.at(id).next = time_.after(delay, [this, id] { advertise(id); });
}

Nanoseconds FakeCentral::upTo(Nanoseconds longest) {
    const auto count = static_cast<std::uint64_t>(longest.count());
    return Nanoseconds{static_cast<std::int64_t>(dice_.below(count + 1))};
}

Nanoseconds FakeCentral::nextInterval(const DeviceSpec& spec) {
    const bool shorter = spec.rhythm == DeviceSpec::Rhythm::uneven && dice_.chance(50);
    return (shorter ? upTo(spec.interval) : spec.interval) + upTo(longestDelay);
}

void FakeCentral::advertise(const Uuid& id) {
    Device& device = devices_.at(id);
    advertiseAfter(id, nextInterval(device.spec));
    if (!listens() || (controller_.filtersDuplicates && device.reported)) return;
    device.reported = true;
    device.known = true;
    if (onReport) onReport(id);
    if (controller_.reading == Nanoseconds{0}) return read(id);
    unread_.push_back(id);
    if (unread_.size() == 1) reading_ = time_.after(controller_.reading, [this] { catchUp(); });
}

void FakeCentral::catchUp() {
    reading_.reset();
    for (const Uuid& id : std::exchange(unread_, {}))
        read(id);
}

void FakeCentral::read(const Uuid& id) {
    const auto device = devices_.find(id);
    if (device == devices_.end()) return; // has another identity since
    report(id, device->second.spec);
    schedule_.heard(id);
    refuseOrWait(id);
    tryConnecting(id);
}

void FakeCentral::report(const Uuid& id, const DeviceSpec& spec) {
    if (delegate_ == nullptr) return;
    Advertisement advertisement{.id = id, .rssi = spec.rssi};
    if (spec.name) advertisement.peripheralName = *spec.name;
    if (!spec.makerData.empty()) advertisement.manufacturerData = spec.makerData;
    delegate_->didDiscover(advertisement);
}

// --- What the stack knows -----------------------------------------------------------------------

const FakeCentral::Device* FakeCentral::known(const Uuid& id) const {
    const auto found = devices_.find(id);
    return found == devices_.end() || !found->second.known ? nullptr : &found->second;
}

bool FakeCentral::changesAddress(const Uuid& id) const {
    const Device* const device = known(id);
    return device != nullptr && device->spec.identity == DeviceSpec::Identity::changing;
}

std::vector<Uuid> FakeCentral::retrieve(const std::set<Uuid>& ids) {
    return {ids.begin(), ids.end()};
}

PeripheralState FakeCentral::peripheralState(const Uuid& id) const {
    const auto found = standings_.find(id);
    return found == standings_.end() ? PeripheralState::disconnected : found->second;
}

std::optional<std::string> FakeCentral::peripheralName(const Uuid& id) const {
    const Device* const device = known(id);
    return device == nullptr ? std::nullopt : device->spec.name;
}

// --- Connections --------------------------------------------------------------------------------

void FakeCentral::connect(const Uuid& id) {
    if (peripheralState(id) == PeripheralState::disconnecting) again_.insert(id);
    if (standings_.try_emplace(id, PeripheralState::connecting).second)
        later([this, id] { refuseOrWait(id); });
}

bool FakeCentral::mayConnect(const Uuid& id, const DeviceSpec& spec) const {
    const bool fixed = spec.identity == DeviceSpec::Identity::fixed;
    return spec.isBonded() || (fixed && wanted_.connect.contains(id));
}

void FakeCentral::refuseOrWait(const Uuid& id) {
    const Device* const device = known(id);
    if (peripheralState(id) != PeripheralState::connecting || device == nullptr) return;
    if (mayConnect(id, device->spec)) return;
    standings_.erase(id);
    if (delegate_ != nullptr) delegate_->didFailToConnect(id);
}

void FakeCentral::tryConnecting(const Uuid& id) {
    if (peripheralState(id) != PeripheralState::connecting || attempt_) return;
    if (devices_.at(id).spec.connecting == DeviceSpec::Connecting::ignores) return;
    attempt_ = {.id = id, .begun = false, .end = {}};
    schedule_.makeWay();
    if (attempt_ && !attempt_->begun && !schedule_.isScanning()) beginAttempt();
}

void FakeCentral::beginAttempt() {
    ++attempts_;
    attempt_->begun = true;
    attempt_->end = time_.after(controller_.attempt, [this] { endAttempt(); });
}

void FakeCentral::endAttempt() {
    const Uuid id = attempt_->id;
    Device& device = devices_.at(id);
    const bool connected =
        device.speaks && device.spec.connecting == DeviceSpec::Connecting::accepts;
    if (connected) {
        standings_[id] = PeripheralState::connected;
        device.next.reset(); // connected, it advertises no more
        listenForKeys();
    } else {
        standings_.erase(id);
    }
    giveUpAttempt();
    if (delegate_ == nullptr) return;
    connected ? delegate_->didConnect(id) : delegate_->didFailToConnect(id);
}

void FakeCentral::giveUpAttempt() {
    attempt_.reset();
    schedule_.resume();
}

void FakeCentral::lose(const Uuid& id, const std::optional<std::string>& reason) {
    standings_.erase(id);
    if (devices_.at(id).speaks) advertiseAfter(id, devices_.at(id).spec.interval);
    listenForKeys();
    if (delegate_ != nullptr) delegate_->didDisconnect(id, reason);
    if (again_.erase(id) > 0) connect(id);
}

void FakeCentral::cancelConnection(const Uuid& id) {
    again_.erase(id);
    switch (peripheralState(id)) {
    case PeripheralState::connecting:
        standings_.erase(id);
        if (attempt_ && attempt_->id == id) giveUpAttempt();
        break;
    case PeripheralState::connected:
        standings_[id] = PeripheralState::disconnecting;
        delayed_.after(answerTime, [this, id] {
            if (peripheralState(id) == PeripheralState::disconnecting) lose(id, std::nullopt);
        });
        break;
    case PeripheralState::disconnected:
    case PeripheralState::disconnecting:
        break;
    }
}

void FakeCentral::readRSSI(const Uuid& id) {
    later([this, id] {
        const bool connected = peripheralState(id) == PeripheralState::connected;
        if (delegate_ == nullptr) return;
        delegate_->didReadRSSI(id, connected ? devices_.at(id).spec.linkRssi : std::nullopt);
    });
}

void FakeCentral::answer(const Uuid& id, const std::function<void(const DeviceSpec&)>& tell) {
    delayed_.after(answerTime, [this, id, tell] {
        const bool connected = peripheralState(id) == PeripheralState::connected;
        if (!connected || delegate_ == nullptr) return;
        const DeviceSpec& spec = devices_.at(id).spec;
        if (spec.services != DeviceSpec::Services::mute) tell(spec);
    });
}

void FakeCentral::discoverServices(const Uuid& id, GattUuid service) {
    answer(id, [this, id, service](const DeviceSpec& spec) {
        const bool found =
            service == genericAccess ||
            (service == deviceInformation && spec.services == DeviceSpec::Services::withModel);
        const std::array list{service};
        delegate_->didDiscoverServices(id, std::span(list).first(found ? 1 : 0));
    });
}

void FakeCentral::discoverCharacteristics(const Uuid& id, GattUuid service,
                                          GattUuid characteristic) {
    answer(id, [this, id, service, characteristic](const DeviceSpec& spec) {
        const bool found = service == deviceInformation && characteristic == modelNumber &&
                           spec.services == DeviceSpec::Services::withModel;
        const std::array list{characteristic};
        delegate_->didDiscoverCharacteristics(id, service, std::span(list).first(found ? 1 : 0));
    });
}

void FakeCentral::readValue(const Uuid& id, GattUuid characteristic) {
    answer(id, [this, id, characteristic](const DeviceSpec& spec) {
        std::optional<std::string_view> value;
        if (characteristic == modelNumber && spec.services == DeviceSpec::Services::withModel)
            value = spec.model;
        delegate_->didUpdateValue(id, characteristic, value);
    });
}

} // namespace wegslot
