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

/// The statuses and reasons that are given here; tests may choose others.
enum class Status : std::uint8_t {
    Success = 0x00,
    UnknownCommand = 0x01,
    UnknownConnection = 0x02,
    KeyMissing = 0x06,
    MemoryExceeded = 0x07,
    ConnectionTimeout = 0x08,
    ConnectionExists = 0x0B,
    CommandDisallowed = 0x0C,
    InvalidParameters = 0x12,
    EndedByLocalHost = 0x16,
    AdvertisingTimeout = 0x3C,
    IntegrityFailure = 0x3D,
    FailedToBeEstablished = 0x3E,
    UnknownAdvertisingSet = 0x42
};

/// A piece of a frame on a link.
struct DataPacket {
    std::uint16_t handle;
    bool isContinuation;
    ByteView data;
};

/// Nothing for every other packet, and for a command cut short.
std::optional<Command> parseCommand(ByteView packet);

/// Nothing for every other packet, and for data cut short.
std::optional<DataPacket> parseData(ByteView packet);

Bytes event(std::uint8_t code, ByteView parameters);
Bytes lowEnergyEvent(std::uint8_t subevent, ByteView parameters);

/// `returned` starts with the status.
Bytes commandComplete(std::uint16_t opcode, ByteView returned);

/// For commands whose result comes later, in an event of its own.
Bytes commandStatus(std::uint16_t opcode, Status status);

Bytes toHost(const DataPacket& packet);

/// At most 31 bytes of data.
Bytes advertisingReport(ReportType type, const Address& address, ByteView data, int rssi);

} // namespace controller
