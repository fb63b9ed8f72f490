#include "controller.h"

#include <utility>

namespace controller {

Controller::Controller(const Address& address, Send send) : state_(address, std::move(send)) {}

void Controller::receive(ByteView packet) {
    if (const std::optional<Command> command = parseCommand(packet)) return receive(*command);
    if (const std::optional<DataPacket> data = parseData(packet)) return receive(*data);
}

void Controller::receive(const Command& command) {
    state_.outbox.hold();
    const Bytes reply = answer(command, state_);
    state_.outbox.release(reply);
}

void Controller::receive(const DataPacket& packet) {
    // What was sent just before a link was lost has nowhere to go.
    if (Link* link = state_.links.find(packet.handle)) link->receive(packet);
}

bool Controller::advertise(ReportType type, const Address& address, ByteView data, int rssi) {
    if (!state_.scan.takes(address, state_.acceptList)) return false;
    state_.outbox.put(advertisingReport(type, address, data, rssi));
    if (type == ReportType::Connectable && state_.scan.isActive()) {
        state_.outbox.put(advertisingReport(ReportType::ScanResponse, address, {}, rssi));
    }
    return true;
}

void Controller::offer(const Address& address, Peer& peer, const Admission& admission) {
    if (!state_.initiator.wants(address, state_.acceptList)) return;
    const ConnectionRequest request = state_.initiator.request();
    state_.initiator.stop();
    if (const auto* failure = std::get_if<Fail>(&admission)) {
        state_.outbox.put(connectionComplete(Status{failure->status}, 0, address, {}));
        return;
    }
    Link& link = state_.links.open({.own = request.own, .peer = address}, peer);
    if (std::holds_alternative<Ignore>(admission)) link.setUnheard();
    state_.outbox.put(connectionComplete(Status::Success, link.handle(), address, request.terms));
}

void Controller::drop(const Peer& peer, std::uint8_t reason) {
    if (const Link* link = state_.links.find(peer)) state_.links.close(link->handle(), reason);
}

void Controller::reportHardwareError(std::uint8_t code) { state_.outbox.put(hardwareError(code)); }

} // namespace controller
