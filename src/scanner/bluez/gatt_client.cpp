#include "scanner/bluez/gatt_client.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace wegslot::bluez {
namespace {

// Of an attribute (Bluetooth Core Specification 5.4, volume 3, part F, 3.2.9).
constexpr std::size_t longestValue = 512;

} // namespace

GattClient::GattClient(const Teller& tell, Scheduler& scheduler)
    : tell_(tell),
      scheduler_(scheduler),
      delayed_(scheduler) {}

void GattClient::setRadio(dbus::Bus& bus, const ObjectWatch& watch, std::string adapter) {
    radio_.emplace(Radio{bus, watch, std::move(adapter)});
}

void GattClient::clearRadio() {
    questions_.clear();
    radio_.reset();
}

void GattClient::discoverServices(const Uuid& id, GattUuid service) {
    ask(id, {.service = service});
}

void GattClient::discoverCharacteristics(const Uuid& id, GattUuid service,
                                         GattUuid characteristic) {
    ask(id, {.service = service, .characteristic = characteristic});
}

void GattClient::readValue(const Uuid& id, GattUuid characteristic) {
    const std::string* const device = path(id);
    const std::string found =
        device == nullptr ? "" : radio_->watch.gatt().characteristic(*device, characteristic);
    if (found.empty()) {
        delayed_.after(Nanoseconds{0}, [this, id, characteristic] {
            tell_(&CentralDelegate::didUpdateValue, id, characteristic, std::nullopt);
        });
        return;
    }
    Question& question = questions_[id] = {};
    question.answer =
        radio_->bus.call({.destination = "org.bluez",
                          .path = found,
                          .interface = "org.bluez.GattCharacteristic1",
                          .member = "ReadValue",
                          .arguments = {dbus::Dictionary{}},
                          .timeout = std::chrono::seconds{60}}, // the protocol's own are 30
                         [this, id, characteristic](const dbus::Message& answer) {
                             questions_.erase(id);
                             const auto bytes = answer.read().bytes();
                             std::optional<std::string> value;
                             if (bytes && bytes->size() <= longestValue)
                                 value.emplace(bytes->begin(), bytes->end());
                             tell_(&CentralDelegate::didUpdateValue, id, characteristic, value);
                         });
}

void GattClient::changed(const Uuid& id) {
    if (questions_.contains(id)) look(id);
}

void GattClient::gattChanged() {
    std::vector<Uuid> asked;
    for (const auto& [id, question] : questions_)
        asked.push_back(id);
    for (const Uuid& id : asked)
        look(id);
}

const std::string* GattClient::path(const Uuid& id) const {
    return radio_ ? radio_->watch.objects().find(id, radio_->adapter) : nullptr;
}

void GattClient::ask(const Uuid& id, Question question) {
    Question& asked = questions_[id] = std::move(question);
    asked.timer = scheduler_.after(Nanoseconds{0}, [this, id] { look(id); });
}

void GattClient::look(const Uuid& id) {
    const auto found = questions_.find(id);
    const std::string* const device = path(id);
    if (found == questions_.end() || found->second.answer) return;
    if (device == nullptr) return answer(id, {});
    if (!radio_->watch.objects().device(*device)->servicesResolved) return;

    Question& question = found->second;
    const GattTree& gatt = radio_->watch.gatt();
    const auto all = question.characteristic ? gatt.characteristics(*device, question.service)
                                             : gatt.services(*device);
    const GattUuid wanted = question.characteristic.value_or(question.service);
    if (std::ranges::find(all, wanted) != all.end()) return answer(id, all);
    if (!std::exchange(question.mayBeLate, false)) return;
    question.timer = scheduler_.after(announcements, [this, id] { answer(id, {}); });
}

void GattClient::answer(const Uuid& id, std::span<const GattUuid> found) {
    const auto question = questions_.extract(id);
    if (question.empty()) return;
    if (question.mapped().characteristic)
        return tell_(&CentralDelegate::didDiscoverCharacteristics, id, question.mapped().service,
                     found);
    tell_(&CentralDelegate::didDiscoverServices, id, found);
}

} // namespace wegslot::bluez
