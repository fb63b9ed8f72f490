#include "coupling/bluez/visits.h"

#include <utility>
#include <vector>

namespace wegslot::coupling {
namespace {

Visitor visitorOf(const bluez::Device& device) {
    // A private address says nothing of who it is tomorrow, not even where we resolve it.
    return {.name = device.name, .identity = device.changing ? std::nullopt : device.id};
}

} // namespace

Visits::Visits(const bluez::ObjectTree& objects, bluez::Links& links, const Teller& tell)
    : objects_(objects),
      links_(links),
      tell_(tell) {}

void Visits::prepare(std::string adapter) {
    adapter_ = std::move(adapter);
    for (const auto& [path, device] : objects_.devices())
        if (device.connected) present_.insert(path);
}

void Visits::open() {
    isOpen_ = true;
    lookAround();
}

void Visits::lookAround() {
    std::vector<std::string> connected; // whoever is told may change what there is
    for (const auto& [path, device] : objects_.devices())
        if (device.connected) connected.push_back(path);
    for (const std::string& path : connected)
        changed(path);
}

bool Visits::isCaller(const bluez::Device& device) const {
    // A mouse that this computer has called, or a headset on the other bearer, is no visitor. Where
    // the kernel does not say, whoever connects counts.
    const auto links = links_.standing(adapter_, device.address);
    return !links || (links->lowEnergy && links->calledUs);
}

void Visits::changed(std::string_view path) {
    const bluez::Device* const device = objects_.device(path);
    if (device == nullptr || !bluez::isUnder(path, adapter_)) return;
    if (isOpen_ && path_ == path) follow(*device); // its bond may come as it goes
    if (!device->connected) return went(path);
    if (isOpen_ && path_ != path && !present_.contains(path) && isCaller(*device))
        came(path, *device);
}

void Visits::removed(std::string_view path) { went(path); }

void Visits::came(std::string_view path, const bluez::Device& device) {
    const Visitor visitor = visitorOf(device);
    if (device.isBonded()) {
        present_.emplace(path);
        acquaintance_ = path;
        return tell_(&CouplingListener::acquaintanceCame, visitor);
    }
    if (path_) return; // one at a time; it is looked at again when the other has gone
    present_.emplace(path);
    path_ = path;
    told_ = visitor;
    tell_(&CouplingListener::visitorCame, visitor);
}

void Visits::follow(const bluez::Device& device) {
    const Visitor now = visitorOf(device);
    const bool isNews = std::exchange(told_, now) != now;
    // Who hands over no identity is paired and never bonded, for the kernel keeps nothing of it:
    // that is to be told as well.
    if (!isBonded_ && (device.paired || device.isBonded())) {
        isBonded_ = true;
        return tell_(&CouplingListener::bonded, now);
    }
    if (isNews) tell_(&CouplingListener::visitorChanged, now);
}

void Visits::went(std::string_view path) {
    if (const auto found = present_.find(path); found != present_.end()) present_.erase(found);
    if (acquaintance_ == path) acquaintance_.reset();
    // With its bond it stays the visitor wherever it goes; only the object is needed to forget it.
    const bool stays = isBonded_ && objects_.device(path) != nullptr;
    if (path_ != path || stays) return;
    path_.reset();
    if (std::exchange(isBonded_, false) || !isOpen_) return;
    tell_(&CouplingListener::visitorLeft);
    if (isOpen_) lookAround();
}

std::optional<std::string> Visits::forget() {
    isBonded_ = false;
    auto acquaintance = std::exchange(acquaintance_, std::nullopt);
    auto visitor = std::exchange(path_, std::nullopt);
    return visitor ? visitor : acquaintance;
}

} // namespace wegslot::coupling
