#include "controller.h"

#include <utility>

namespace controller {

Controller::Controller(const Address& address, Send send)
    : state_{address, {}},
      send_(std::move(send)) {}

void Controller::receive(ByteView packet) {
    const std::optional<Command> command = parseCommand(packet);
    if (command) send_(commandComplete(command->opcode, answer(*command, state_)));
}

bool Controller::advertise(ReportType type, const Address& address, ByteView data, int rssi) {
    if (!state_.scan.takes(address)) return false;
    send_(advertisingReport(type, address, data, rssi));
    if (type == ReportType::Connectable && state_.scan.isActive()) {
        send_(advertisingReport(ReportType::ScanResponse, address, {}, rssi));
    }
    return true;
}

} // namespace controller
