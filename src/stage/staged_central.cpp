#include "stage/staged_central.h"

namespace wegslot {

void StagedCentral::setState(CentralState state,
                             std::optional<CentralAuthorization> authorization) {
    state_ = state;
    if (authorization) authorization_ = *authorization;
    if (delegate_ != nullptr) delegate_->didUpdateState();
}

void StagedCentral::know(const Uuid& id, const std::optional<std::string>& name) {
    Peripheral& peripheral = peripherals_[id];
    peripheral.known = true;
    if (name) peripheral.name = name;
}

void StagedCentral::advertise(Advertisement advertisement) {
    Peripheral& peripheral = peripherals_[advertisement.id];
    peripheral.known = true;
    if (advertisement.peripheralName) peripheral.name = *advertisement.peripheralName;
    advertisement.peripheralName = peripheral.name;
    if (delegate_ != nullptr) delegate_->didDiscover(advertisement);
}

void StagedCentral::connected(const Uuid& id) {
    peripherals_[id].state = PeripheralState::connected;
    if (delegate_ != nullptr) delegate_->didConnect(id);
}

void StagedCentral::connectFailed(const Uuid& id) {
    peripherals_[id].state = PeripheralState::disconnected;
    if (delegate_ != nullptr) delegate_->didFailToConnect(id);
}

void StagedCentral::disconnected(const Uuid& id, const std::optional<std::string>& reason) {
    peripherals_[id].state = PeripheralState::disconnected;
    if (delegate_ != nullptr) delegate_->didDisconnect(id, reason);
}

void StagedCentral::rssiRead(const Uuid& id, std::optional<int> rssi) {
    if (delegate_ != nullptr) delegate_->didReadRSSI(id, rssi);
}

void StagedCentral::services(const Uuid& id, std::span<const GattUuid> services) {
    if (delegate_ != nullptr) delegate_->didDiscoverServices(id, services);
}

void StagedCentral::characteristics(const Uuid& id, GattUuid service,
                                    std::span<const GattUuid> characteristics) {
    if (delegate_ != nullptr) delegate_->didDiscoverCharacteristics(id, service, characteristics);
}

void StagedCentral::value(const Uuid& id, GattUuid characteristic,
                          const std::optional<std::string_view>& value,
                          const std::optional<std::string>& name) {
    if (name) peripherals_[id].name = name;
    if (delegate_ != nullptr) delegate_->didUpdateValue(id, characteristic, value);
}

void StagedCentral::identify(const Uuid& from, const Uuid& to) {
    const auto found = peripherals_.find(from);
    if (found != peripherals_.end() && from != to) {
        const Peripheral before = found->second;
        peripherals_.erase(found);
        Peripheral& identity = peripherals_[to];
        identity.known |= before.known;
        if (!identity.name) identity.name = before.name;
        if (identity.state == PeripheralState::disconnected) identity.state = before.state;
    }
    if (delegate_ != nullptr) delegate_->didIdentify(from, to);
}

void StagedCentral::scan() { called("scan"); }

bool StagedCentral::changesAddress(const Uuid& id) const {
    const auto found = peripherals_.find(id);
    return found != peripherals_.end() && found->second.changing;
}

std::vector<Uuid> StagedCentral::retrieve(const std::set<Uuid>& ids) {
    std::vector<Uuid> known;
    for (const Uuid& id : ids) {
        const auto found = peripherals_.find(id);
        if (found != peripherals_.end() && found->second.known) known.push_back(id);
    }
    return known;
}

PeripheralState StagedCentral::peripheralState(const Uuid& id) const {
    const auto found = peripherals_.find(id);
    return found == peripherals_.end() ? PeripheralState::disconnected : found->second.state;
}

std::optional<std::string> StagedCentral::peripheralName(const Uuid& id) const {
    const auto found = peripherals_.find(id);
    return found == peripherals_.end() ? std::nullopt : found->second.name;
}

void StagedCentral::connect(const Uuid& id) {
    peripherals_[id].state = PeripheralState::connecting;
    called("connect", &id);
}

void StagedCentral::cancelConnection(const Uuid& id) {
    peripherals_[id].state = PeripheralState::disconnected;
    called("cancel", &id);
}

void StagedCentral::readRSSI(const Uuid& id) { called("readRSSI", &id); }

void StagedCentral::discoverServices(const Uuid& id, GattUuid) { called("discoverServices", &id); }

void StagedCentral::discoverCharacteristics(const Uuid& id, GattUuid, GattUuid) {
    called("discoverCharacteristics", &id);
}

void StagedCentral::readValue(const Uuid& id, GattUuid) { called("readValue", &id); }

void StagedCentral::called(std::string_view operation, const Uuid* id) const {
    if (listener_) listener_(operation, id);
}

} // namespace wegslot
