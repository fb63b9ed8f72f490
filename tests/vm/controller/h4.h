// The packets that pass between the kernel and the controller, as a serial line would carry them: a
// type byte, then the packet. Only taking apart and putting together; what they mean is known
// elsewhere.
#pragma once

#include <optional>

#include "address.h"
#include "bytes.h"

namespace controller {

struct Command {
    std::uint16_t opcode;
    ByteView parameters;
};

/// The numbers are those of the air.
enum class ReportType : std::uint8_t {
    Connectable = 0x00,
    NotConnectable = 0x03,
    ScanResponse = 0x04
};

/// The statuses that answers here carry.
enum class Status : std::uint8_t {
    Success = 0x00,
    UnknownCommand = 0x01,
    CommandDisallowed = 0x0C,
    InvalidParameters = 0x12
};

/// Nothing for every other packet, and for a command cut short.
std::optional<Command> parseCommand(ByteView packet);

/// `returned` starts with the status.
Bytes commandComplete(std::uint16_t opcode, ByteView returned);

/// At most 31 bytes of data.
Bytes advertisingReport(ReportType type, const Address& address, ByteView data, int rssi);

} // namespace controller
