#include "tests/contract/told.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace wegslot {
namespace {

/// The SIG's short form, which has four digits.
std::string shortForm(GattUuid number) {
    return hexadecimal(static_cast<std::uint32_t>(number), 4);
}

std::string list(std::string text, std::span<const GattUuid> numbers) {
    for (const GattUuid number : numbers)
        text += ' ' + shortForm(number);
    return text;
}

} // namespace

void Told::follow(BluetoothCentral* central) {
    if (central_ != nullptr) central_->setDelegate(nullptr);
    central_ = central;
    if (central_ != nullptr) central_->setDelegate(this);
}

std::vector<std::string> Told::of(const Uuid& id) const {
    const auto found = notes_.find(id);
    return found == notes_.end() ? std::vector<std::string>{} : found->second;
}

Told::Heard Told::heard(const Uuid& id) const {
    const auto found = heard_.find(id);
    return found == heard_.end() ? Heard{} : found->second;
}

void Told::called() {
    ++calls_;
    if (states.empty()) somethingBeforeState = true;
}

void Told::note(const Uuid& id, std::string what) {
    called();
    notes_[id].push_back(std::move(what));
}

std::string Told::unless(PeripheralState state, const Uuid& id) const {
    return central_->peripheralState(id) == state ? "" : ", but the state is another";
}

void Told::didUpdateState() {
    ++calls_;
    states.push_back(central_->state());
    if (scans && states.back() == CentralState::poweredOn) central_->scan();
}

void Told::didDiscover(const Advertisement& advertisement) {
    called();
    Heard& heard = heard_[advertisement.id];
    ++heard.times;
    heard.rssi = advertisement.rssi;
    heard.name = std::string(advertisement.name());
    const auto& data = advertisement.manufacturerData;
    if (data) heard.makerData.assign(data->begin(), data->end());
}

void Told::didConnect(const Uuid& id) {
    note(id, "connected" + unless(PeripheralState::connected, id));
}

void Told::didFailToConnect(const Uuid& id) {
    note(id, "failed" + unless(PeripheralState::disconnected, id));
}

void Told::didDisconnect(const Uuid& id, const std::optional<std::string>& reason) {
    note(id, "lost" + unless(PeripheralState::disconnected, id));
    lossReasons.push_back(reason);
}

void Told::didReadRSSI(const Uuid& id, std::optional<int> rssi) {
    note(id, "rssi " + (rssi ? std::to_string(*rssi) : "-"));
}

void Told::didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) {
    note(id, list("services", services));
}

void Told::didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                      std::span<const GattUuid> characteristics) {
    note(id, list("characteristics of " + shortForm(service), characteristics));
}

void Told::didUpdateValue(const Uuid& id, GattUuid characteristic,
                          const std::optional<std::string_view>& value) {
    note(id, "value of " + shortForm(characteristic) + ' ' + std::string(value.value_or("-")));
}

void Told::didIdentify(const Uuid& from, const Uuid& to) {
    note(from, "identified");
    identities.emplace_back(from, to);
}

} // namespace wegslot
