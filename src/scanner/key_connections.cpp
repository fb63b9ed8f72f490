#include "scanner/key_connections.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace wegslot {

bool KeyConnections::setWatched(std::set<Uuid> ids) {
    return std::exchange(watched_, std::move(ids)) != watched_;
}

bool KeyConnections::setPassive(std::set<Uuid> ids) {
    return std::exchange(passive_, std::move(ids)) != passive_;
}

bool KeyConnections::isActive(const Uuid& id) const {
    return mayConnect_ && watched_.contains(id) && !passive_.contains(id);
}

std::set<Uuid> KeyConnections::active() const {
    std::set<Uuid> active;
    if (!mayConnect_) return active;
    std::ranges::set_difference(watched_, passive_, std::inserter(active, active.end()));
    return active;
}

std::set<Uuid> KeyConnections::onlyHeard() const {
    std::set<Uuid> heard;
    std::ranges::set_difference(watched_, active(), std::inserter(heard, heard.end()));
    return heard;
}

bool KeyConnections::isDisconnected(const Uuid& id) const {
    return central_.peripheralState(id) == PeripheralState::disconnected;
}

void KeyConnections::update(const std::optional<Uuid>& identifying) {
    if (state_.get() != CentralState::poweredOn) return;

    for (const Uuid& id : central_.retrieve(active())) {
        hold(id);
        if (isDisconnected(id)) central_.connect(id);
    }

    std::set<Uuid> unwanted; // in ascending order, so that the calls come in a known one
    for (const Uuid& id : held_)
        if (!isActive(id) && id != identifying && !isDisconnected(id)) unwanted.insert(id);
    for (const Uuid& id : unwanted)
        central_.cancelConnection(id);
}

void KeyConnections::pollRSSI() {
    for (const Uuid& id : active())
        if (holds(id) && central_.peripheralState(id) == PeripheralState::connected)
            central_.readRSSI(id);
}

void KeyConnections::strengthRead(const Uuid& id, bool told) {
    if (told)
        telling_.insert(id);
    else
        telling_.erase(id);
}

bool KeyConnections::tellsStrength(const Uuid& id) const {
    return telling_.contains(id) && central_.peripheralState(id) == PeripheralState::connected;
}

void KeyConnections::reconnectLater(const Uuid& id) {
    delayed_.after(reconnectDelay, [this, id] {
        if (state_.get() == CentralState::poweredOn && isActive(id) && isDisconnected(id))
            central_.connect(id);
    });
}

void KeyConnections::letGo(const Uuid& id) {
    if (!isActive(id) && holds(id) && !isDisconnected(id)) central_.cancelConnection(id);
}

} // namespace wegslot
