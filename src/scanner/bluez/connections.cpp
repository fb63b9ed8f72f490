#include "scanner/bluez/connections.h"

#include "scanner/bluez/loss_text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace wegslot::bluez {
namespace {

// `Device1.Connect` chooses the bearer itself, and of a phone or headset it may choose the one
// with the music. Where a device has both, only its low-energy bearer is asked.
const char* interfaceFor(const Device& device) {
    return device.isLowEnergyOnly() ? deviceInterface : bearerInterface;
}

/// BlueZ says of it only whether any of its two bearers is connected.
bool isToldAsOne(const Device& device) {
    return !device.isLowEnergyOnly() && !device.lowEnergyConnected;
}

} // namespace

Connections::Connections(const Teller& tell, ConnectionListener& listener, Links& links,
                         Scheduler& scheduler, const Clock& clock)
    : tell_(tell),
      listener_(listener),
      links_(links),
      scheduler_(scheduler),
      clock_(clock),
      delayed_(scheduler) {}

Connections::~Connections() {
    // BlueZ keeps a link whoever asked for it has gone.
    leave(LinksThen::forgotten);
}

void Connections::leave(LinksThen links) {
    if (!radio_) return;
    std::erase_if(ours_, [this, links](const Uuid& id) {
        const Device* const known = device(id);
        if (known != nullptr && links == LinksThen::kept && isLinked(*known)) return false;
        if (known != nullptr) close(id, *known);
        return true;
    });
}

void Connections::setRadio(dbus::Bus& bus, const ObjectTree& objects, std::string adapter) {
    radio_.emplace(Radio{bus, objects, std::move(adapter)});
    failures_.clear();
    // What was ours and has ended meanwhile may stand again, as another's.
    std::erase_if(ours_, [this](const Uuid& id) {
        const Device* const known = device(id);
        return known == nullptr || !isLinked(*known);
    });
    for (const auto& [id, connection] : connections_)
        delayed_.after(Nanoseconds{0}, [this, id = id] { consider(id); });
}

void Connections::clearRadio(LinksThen links) {
    if (!radio_) return;
    radio_.reset();
    lookAgain_.reset();
    std::vector<Uuid> lost; // whoever is told may ask for connections anew
    for (auto& [id, connection] : connections_) {
        connection.answer.reset();
        const bool stood =
            connection.stage == Stage::connected || connection.stage == Stage::closing;
        if (stood) lost.push_back(id);
        if (!stood) connection.stage = Stage::waiting;
    }
    if (links == LinksThen::forgotten) ours_.clear();
    for (const Uuid& id : lost)
        lose(connections_.find(id));
}

void Connections::connect(const Uuid& id) {
    const auto [connection, isNew] = connections_.try_emplace(id);
    if (isNew) delayed_.after(Nanoseconds{0}, [this, id] { consider(id); });
    connection->second.again = connection->second.stage == Stage::closing;
}

void Connections::cancel(const Uuid& id) {
    const auto found = connections_.find(id);
    if (found == connections_.end()) return;
    Connection& connection = found->second;
    connection.again = false;
    const Stage stage = connection.stage;
    if (stage == Stage::closing) return;
    const Device* const known = device(id);
    const bool isOurs = ours_.contains(id) && known != nullptr;
    if (stage == Stage::connected && isOurs) {
        connection.stage = Stage::closing;
        connection.answer = call(id, *known, "Disconnect", [this, id](const dbus::Message& answer) {
            closed(id, answer.error().has_value());
        });
        return;
    }
    connections_.erase(found);
    if (isOurs) close(id, *known); // gives up the attempt
    ours_.erase(id);
    delayed_.after(Nanoseconds{0}, [this, id, stage] {
        if (stage == Stage::connected) return tellLost(id, std::nullopt);
        if (stage != Stage::waiting) arrangeRadio();
    });
}

void Connections::closed(const Uuid& id, bool refused) {
    const auto found = connections_.find(id);
    if (found == connections_.end() || found->second.stage != Stage::closing) return;
    const Device* const known = device(id);
    if (refused || known == nullptr || !isLinked(*known)) return lose(found);
    // The answer was faster than the property; a new request must not find the old link.
    delayed_.after(closing, [this, id] {
        const auto still = connections_.find(id);
        if (still != connections_.end() && still->second.stage == Stage::closing) lose(still);
    });
}

PeripheralState Connections::state(const Uuid& id) const {
    const auto found = connections_.find(id);
    if (found == connections_.end()) return PeripheralState::disconnected;
    switch (found->second.stage) {
    case Stage::connected:
        return PeripheralState::connected;
    case Stage::closing:
        return PeripheralState::disconnecting;
    case Stage::waiting:
    case Stage::heard:
    case Stage::attempting:
    case Stage::verifying:
        break;
    }
    return PeripheralState::connecting;
}

const Device* Connections::device(const Uuid& id) const {
    if (!radio_) return nullptr;
    const std::string* const path = radio_->objects.find(id, radio_->adapter);
    return path == nullptr ? nullptr : radio_->objects.device(*path);
}

bool Connections::mayConnect(const Uuid& id, const Device& device) const {
    // BlueZ reads some of what it finds on a device by itself; a phone that has no bond answers
    // that by asking its owner to pair.
    return device.isBonded() || (!device.changing && keys_.contains(id));
}

bool Connections::isLinked(const Device& device) const {
    if (device.lowEnergyConnected) return *device.lowEnergyConnected;
    if (device.isLowEnergyOnly() || !device.connected) return device.connected;
    return links_.isLinked(radio_->adapter, device.address).value_or(false);
}

bool Connections::canAttempt(const Uuid& id, const Device& device) const {
    if (!device.isLowEnergyOnly() && !device.lowEnergyConnected) return false;
    // Most devices fall silent once they are connected: without the strength of the link a key
    // would be lost the moment it is held.
    if (keys_.contains(id) && !links_.canRead(radio_->adapter)) return false;
    const auto failed = failures_.find(id);
    return failed == failures_.end() || clock_.now() >= failed->second.notBefore;
}

void Connections::heard(const Uuid& id) {
    if (!connections_.contains(id)) return; // as most that is heard
    consider(id);
    const auto found = connections_.find(id);
    const Device* const known = device(id);
    if (found == connections_.end() || found->second.stage != Stage::waiting || known == nullptr ||
        !canAttempt(id, *known))
        return;
    found->second.stage = Stage::heard;
    listener_.radioNeeded();
}

void Connections::radioIsFree() {
    std::vector<Uuid> heard;
    for (const auto& [id, connection] : connections_)
        if (connection.stage == Stage::heard) heard.push_back(id);
    for (const Uuid& id : heard)
        attempt(id);
}

void Connections::arrangeRadio() {
    bool isWaitedFor = false;
    for (const auto& [id, connection] : connections_) {
        if (connection.stage == Stage::attempting || connection.stage == Stage::verifying)
            return; // whose end comes here too
        isWaitedFor = isWaitedFor || connection.stage == Stage::heard;
    }
    isWaitedFor ? listener_.radioNeeded() : listener_.radioReleased();
}

void Connections::changed(const Uuid& id) {
    const auto found = connections_.find(id);
    if (found == connections_.end()) return;
    const Stage stage = found->second.stage;
    if (stage == Stage::waiting) consider(id);
    if (stage != Stage::connected && stage != Stage::closing) return;
    const Device* const known = device(id);
    if (known == nullptr || !isLinked(*known)) lose(found);
}

void Connections::moved(const Uuid& from, const Uuid& to) {
    auto node = connections_.extract(from);
    if (node.empty()) return;
    const Stage stage = node.mapped().stage;
    const bool stands = stage == Stage::connected || stage == Stage::closing;
    if (!stands) node.mapped() = {}; // an answer under way would come for the former id
    node.key() = to;
    connections_.insert(std::move(node));
    if (ours_.erase(from) > 0) ours_.insert(to);
    if (!stands && stage != Stage::waiting) arrangeRadio();
    consider(to);
}

void Connections::linkEnded(const Uuid& id, std::string_view name) {
    const auto found = connections_.find(id);
    const Device* const known = device(id);
    // Of a device with two bearers it may be the other's link.
    if (found != connections_.end() && found->second.stage == Stage::connected &&
        known != nullptr && !isToldAsOne(*known))
        found->second.reason = lossText(name);
}

void Connections::consider(const Uuid& id) {
    const auto found = connections_.find(id);
    const Device* const known = device(id);
    if (known == nullptr || found == connections_.end() || found->second.stage != Stage::waiting)
        return;
    if (!mayConnect(id, *known)) return fail(found);
    if (isLinked(*known)) return succeed(found);
    lookAgainAt(*known);
}

void Connections::lookAgainAt(const Device& device) {
    if (device.connected && isToldAsOne(device) && !lookAgain_)
        lookAgain_ = scheduler_.every(lookInterval, [this] { lookAtBoth(); });
}

void Connections::lookAtBoth() {
    std::vector<Uuid> ambiguous;
    for (const auto& [id, connection] : connections_)
        if (const Device* const known = device(id);
            known != nullptr && known->connected && isToldAsOne(*known))
            ambiguous.push_back(id);
    if (ambiguous.empty()) lookAgain_.reset();
    for (const Uuid& id : ambiguous)
        changed(id);
}

void Connections::attempt(const Uuid& id) {
    const auto found = connections_.find(id);
    const Device* const known = device(id);
    if (found == connections_.end() || found->second.stage != Stage::heard) return;
    if (known == nullptr || isLinked(*known)) { // gone, or somebody else was faster
        found->second.stage = Stage::waiting;
        delayed_.after(Nanoseconds{0}, [this, id] {
            consider(id);
            arrangeRadio();
        });
        return;
    }
    ours_.insert(id);
    found->second.stage = Stage::attempting;
    found->second.answer = call(id, *known, "Connect", [this, id](const dbus::Message& answer) {
        attempted(id, answer.error());
    });
}

void Connections::attempted(const Uuid& id, const std::optional<std::string>& error) {
    const auto found = connections_.find(id);
    const Device* const known = device(id);
    if (found == connections_.end()) return;
    if (error) ours_.erase(id); // if there is a link, who opened it is not known
    if (known == nullptr) return fail(found);
    if (isLinked(*known)) return succeed(found);
    // BlueZ has been seen to report an abort of what then stood, and its answer may overtake the
    // change of the property.
    found->second.stage = Stage::verifying;
    found->second.answer = radio_->bus.call(
        {.destination = "org.bluez",
         .path = *radio_->objects.find(id, radio_->adapter),
         .interface = "org.freedesktop.DBus.Properties",
         .member = "Get",
         .arguments = {std::string(interfaceFor(*known)), std::string("Connected")}},
        [this, id](const dbus::Message& answer) {
            bool isConnected = false;
            answer.read().variant([&isConnected](dbus::Reader& value) {
                isConnected = value.boolean().value_or(false);
            });
            verified(id, isConnected);
        });
}

void Connections::verified(const Uuid& id, bool connected) {
    const auto found = connections_.find(id);
    if (found == connections_.end()) return;
    connected ? succeed(found) : fail(found);
}

void Connections::succeed(Found connection) {
    const Uuid id = connection->first;
    const bool attempted = connection->second.stage != Stage::waiting;
    connection->second = {.stage = Stage::connected};
    failures_.erase(id);
    if (attempted) arrangeRadio();
    if (const Device* const known = device(id)) lookAgainAt(*known);
    tell_(&CentralDelegate::didConnect, id);
}

void Connections::fail(Found connection) {
    const Uuid id = connection->first;
    const bool attempted = connection->second.stage != Stage::waiting;
    connections_.erase(connection);
    ours_.erase(id);
    if (attempted) {
        Failures& failures = failures_[id];
        const auto doubled = firstSpacing * (1 << std::min(failures.count++, 4));
        failures.notBefore = clock_.now() + std::min(doubled, longestSpacing);
        arrangeRadio();
    }
    tell_(&CentralDelegate::didFailToConnect, id);
}

void Connections::lose(Found connection) {
    if (connection == connections_.end()) return;
    const Uuid id = connection->first;
    const auto reason = lossReason(id, connection->second);
    const bool again = connection->second.again;
    connections_.erase(connection);
    if (radio_) ours_.erase(id); // else the link may stand, and it is only we who went
    if (again) connect(id);
    tellLost(id, reason);
}

void Connections::tellLost(const Uuid& id, const std::optional<std::string>& reason) {
    listener_.linkLost(id);
    tell_(&CentralDelegate::didDisconnect, id, reason);
}

std::optional<std::string> Connections::lossReason(const Uuid& id,
                                                   const Connection& connection) const {
    const Device* const known = device(id);
    // Taken in any case, or the next loss would be told with this one's.
    const auto code =
        known == nullptr ? std::nullopt : links_.lossCode(radio_->adapter, known->address);
    if (connection.stage == Stage::closing) return std::nullopt; // as it was asked to
    if (connection.reason) return connection.reason;
    return code ? std::optional(lossText(*code)) : std::nullopt;
}

void Connections::close(const Uuid& id, const Device& device) {
    radio_->bus.send({.destination = "org.bluez",
                      .path = *radio_->objects.find(id, radio_->adapter),
                      .interface = interfaceFor(device),
                      .member = "Disconnect"});
}

Subscription Connections::call(const Uuid& id, const Device& device, const std::string& member,
                               std::function<void(const dbus::Message&)> answer) {
    return radio_->bus.call({.destination = "org.bluez",
                             .path = *radio_->objects.find(id, radio_->adapter),
                             .interface = interfaceFor(device),
                             .member = member,
                             .timeout = patience},
                            std::move(answer));
}

} // namespace wegslot::bluez
