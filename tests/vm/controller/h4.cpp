#include "h4.h"

namespace controller {

namespace {

constexpr std::uint8_t commandPacket = 0x01;
constexpr std::uint8_t dataPacket = 0x02;
constexpr std::uint8_t eventPacket = 0x04;
constexpr std::size_t commandHeader = 4;
constexpr std::size_t dataHeader = 5;

constexpr std::uint8_t commandCompleteEvent = 0x0E;
constexpr std::uint8_t commandStatusEvent = 0x0F;
constexpr std::uint8_t lowEnergyMetaEvent = 0x3E;
constexpr std::uint8_t advertisingReportSubevent = 0x02;

/// How many further commands the kernel may send before the next answer.
constexpr std::uint8_t commandCredits = 1;

/// A data packet's first two bytes: twelve bits of handle, then which piece of a frame it is.
constexpr unsigned handleMask = 0x0FFF;
constexpr unsigned pieceShift = 12;
constexpr unsigned pieceMask = 0x3;
constexpr unsigned continuation = 0x1;
constexpr unsigned firstPieceToHost = 0x2;

} // namespace

std::optional<Command> parseCommand(ByteView packet) {
    if (packet.size() < commandHeader || packet[0] != commandPacket) return std::nullopt;
    const std::size_t length = packet[3];
    if (packet.size() < commandHeader + length) return std::nullopt;
    return Command{.opcode = read16(packet, 1),
                   .parameters = packet.subspan(commandHeader, length)};
}

std::optional<DataPacket> parseData(ByteView packet) {
    if (packet.size() < dataHeader || packet[0] != dataPacket) return std::nullopt;
    const std::size_t length = read16(packet, 3);
    if (packet.size() < dataHeader + length) return std::nullopt;
    const unsigned first = read16(packet, 1);
    return DataPacket{.handle = static_cast<std::uint16_t>(first & handleMask),
                      .isContinuation = ((first >> pieceShift) & pieceMask) == continuation,
                      .data = packet.subspan(dataHeader, length)};
}

Bytes event(std::uint8_t code, ByteView parameters) {
    Bytes packet;
    packet.reserve(3 + parameters.size());
    append8(packet, eventPacket);
    append8(packet, code);
    append8(packet, static_cast<unsigned>(parameters.size()));
    append(packet, parameters);
    return packet;
}

Bytes lowEnergyEvent(std::uint8_t subevent, ByteView parameters) {
    Bytes whole;
    whole.reserve(1 + parameters.size());
    append8(whole, subevent);
    append(whole, parameters);
    return event(lowEnergyMetaEvent, whole);
}

Bytes commandComplete(std::uint16_t opcode, ByteView returned) {
    Bytes parameters;
    append8(parameters, commandCredits);
    append16(parameters, opcode);
    append(parameters, returned);
    return event(commandCompleteEvent, parameters);
}

Bytes commandStatus(std::uint16_t opcode, Status status) {
    Bytes parameters;
    append8(parameters, static_cast<unsigned>(status));
    append8(parameters, commandCredits);
    append16(parameters, opcode);
    return event(commandStatusEvent, parameters);
}

Bytes toHost(const DataPacket& packet) {
    const unsigned piece = packet.isContinuation ? continuation : firstPieceToHost;
    Bytes bytes;
    bytes.reserve(dataHeader + packet.data.size());
    append8(bytes, dataPacket);
    append16(bytes, packet.handle | (piece << pieceShift));
    append16(bytes, static_cast<unsigned>(packet.data.size()));
    append(bytes, packet.data);
    return bytes;
}

Bytes advertisingReport(ReportType type, const Address& address, ByteView data, int rssi) {
    Bytes parameters;
    parameters.reserve(11 + data.size());
    append8(parameters, 1); // one report in this event
    append8(parameters, static_cast<unsigned>(type));
    append8(parameters, static_cast<unsigned>(address.type));
    append(parameters, address.bytes);
    append8(parameters, static_cast<unsigned>(data.size()));
    append(parameters, data);
    append8(parameters, static_cast<std::uint8_t>(rssi));
    return lowEnergyEvent(advertisingReportSubevent, parameters);
}

} // namespace controller
