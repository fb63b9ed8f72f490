#include "controller.h"

#include <utility>

namespace controller {

namespace {

/// What a phone asks for: an interval of 30 ms, and 720 ms without a word before a link is lost.
constexpr LinkTerms phonesTerms{.interval = 24, .latency = 0, .timeout = 72};

} // namespace

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
        state_.outbox.put(
            connectionComplete(Status{failure->status}, {.peer = address}, state_.eventForm()));
        return;
    }
    Link& link = state_.links.open({.own = request.own, .peer = address}, peer);
    if (std::holds_alternative<Ignore>(admission)) link.setUnheard();
    state_.outbox.put(connectionComplete(Status::Success,
                                         {.handle = link.handle(),
                                          .role = LinkRole::Central,
                                          .peer = address,
                                          .terms = request.terms},
                                         state_.eventForm()));
}

Address Controller::addressOf(const AdvertisingSet& set, SetHandle handle) const {
    if (set.ownType == AddressType::Public) return state_.address;
    return handle == olderSet ? state_.randomAddress : set.randomAddress;
}

void Controller::connectFrom(const Address& address, Peer& peer, SetHandle handle) {
    AdvertisingSet& set = state_.advertising.at(handle);
    set.isOn = false;
    set.end.reset();
    const Link& link = state_.links.open(
        {.own = addressOf(set, handle), .peer = address, .role = LinkRole::Peripheral}, peer);
    state_.outbox.put(connectionComplete(Status::Success,
                                         {.handle = link.handle(),
                                          .role = LinkRole::Peripheral,
                                          .peer = address,
                                          .terms = phonesTerms},
                                         state_.eventForm()));
    if (handle != olderSet)
        state_.outbox.put(advertisingSetTerminated(
            Status::Success, static_cast<std::uint8_t>(handle), link.handle()));
}

void Controller::passTime(TimePoint now) {
    for (const SetHandle handle : state_.advertising.passTime(now)) {
        if (handle == olderSet) continue;
        state_.outbox.put(advertisingSetTerminated(Status::AdvertisingTimeout,
                                                   static_cast<std::uint8_t>(handle), 0));
    }
}

void Controller::drop(const Peer& peer, std::uint8_t reason) {
    if (const Link* link = state_.links.find(peer)) state_.links.close(link->handle(), reason);
}

void Controller::reportHardwareError(std::uint8_t code) { state_.outbox.put(hardwareError(code)); }

} // namespace controller
