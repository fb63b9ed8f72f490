#include "scanner/model_identifier.h"

#include "base/text.h"
#include "log/log.h"
#include "scanner/log_name.h"

#include <algorithm>

namespace wegslot {
namespace {

bool contains(std::span<const GattUuid> list, GattUuid wanted) {
    return std::ranges::find(list, wanted) != list.end();
}

} // namespace

void ModelIdentifier::setDiscoveryActive(bool active) {
    discoveryActive_ = active;
    if (active) identifyNext();
}

void ModelIdentifier::identifyNext() {
    if (identifying_ || state_.get() != CentralState::poweredOn || !connections_.mayConnect())
        return;
    const auto candidate = bestCandidate();
    if (!candidate || !connections_.holds(*candidate)) return;

    identifying_ = candidate;
    if (central_.peripheralState(*candidate) == PeripheralState::connected) {
        central_.discoverServices(*candidate, deviceInfoService);
    } else {
        central_.connect(*candidate);
    }
    timer_ = scheduler_.after(timeout, [this] {
        if (identifying_) finish(Uuid{*identifying_}, Outcome::failed);
    });
}

std::optional<Uuid> ModelIdentifier::bestCandidate() const {
    const TimePoint now = clock_.now();
    std::optional<Uuid> best;
    Dbm strongest = signalFloor;
    devices_.forEach([&](const SeenDevice& device) {
        if (!device.isApple() || device.model || failed_.contains(device.id)) return;
        if (now - device.lastSeen >= recency) return;
        const auto signal = devices_.smoothedRSSI(device.id, DeviceTable::smoothingWindow, now);
        if (!signal || *signal <= signalFloor) return;
        // Of equally strong ones the lowest id, so that the choice does not depend on the table.
        if (*signal < strongest || (*signal == strongest && best && device.id > *best)) return;
        best = device.id;
        strongest = *signal;
    });
    return best;
}

void ModelIdentifier::didConnect(const Uuid& id) {
    if (identifying_ == id) central_.discoverServices(id, deviceInfoService);
}

void ModelIdentifier::didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) {
    if (contains(services, deviceInfoService)) {
        central_.discoverCharacteristics(id, deviceInfoService, modelCharacteristic);
        return;
    }
    finish(id, Outcome::failed);
}

void ModelIdentifier::didDiscoverCharacteristics(const Uuid& id,
                                                 std::span<const GattUuid> characteristics) {
    if (contains(characteristics, modelCharacteristic)) {
        central_.readValue(id, modelCharacteristic);
        return;
    }
    finish(id, Outcome::failed);
}

void ModelIdentifier::didUpdateValue(const Uuid& id, GattUuid characteristic,
                                     const std::optional<std::string_view>& value) {
    std::string_view model;
    if (characteristic == modelCharacteristic && value && isUtf8(*value)) model = trimmed(*value);
    if (model.empty()) {
        finish(id, Outcome::failed);
        return;
    }
    store(id, model);
    finish(id, Outcome::succeeded);
}

void ModelIdentifier::store(const Uuid& id, std::string_view model) {
    const std::string name = central_.peripheralName(id).value_or("");
    if (SeenDevice* const device = devices_.find(id)) {
        device->model = model;
        if (!name.empty()) device->name = name;
    }
    Log::write("Herkend: " + id.text() + " model=" + nameForLog(model) +
               " naam=" + (name.empty() ? "-" : nameForLog(name)));
}

void ModelIdentifier::finish(const Uuid& id, Outcome outcome) {
    if (identifying_ != id) return;
    timer_.reset();
    identifying_.reset();
    if (outcome == Outcome::failed) failed_.insert(id);
    connections_.letGo(id);
    if (!discoveryActive_) return;
    delayed_.after(pause, [this] { identifyNext(); });
}

void ModelIdentifier::move(const Uuid& from, const Uuid& to) {
    if (failed_.erase(from) > 0) failed_.insert(to);
    if (identifying_ == from) identifying_ = to;
}

} // namespace wegslot
