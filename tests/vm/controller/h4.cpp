#include "h4.h"

namespace controller {

namespace {

constexpr std::uint8_t commandPacket = 0x01;
constexpr std::uint8_t eventPacket = 0x04;
constexpr std::size_t commandHeader = 4;

constexpr std::uint8_t commandCompleteEvent = 0x0E;
constexpr std::uint8_t lowEnergyEvent = 0x3E;
constexpr std::uint8_t advertisingReportSubevent = 0x02;

/// How many further commands the kernel may send before the next answer.
constexpr std::uint8_t commandCredits = 1;

Bytes event(std::uint8_t code, std::size_t parameterLength) {
    Bytes packet;
    packet.reserve(3 + parameterLength);
    append8(packet, eventPacket);
    append8(packet, code);
    append8(packet, static_cast<unsigned>(parameterLength));
    return packet;
}

} // namespace

std::optional<Command> parseCommand(ByteView packet) {
    if (packet.size() < commandHeader || packet[0] != commandPacket) return std::nullopt;
    const std::size_t length = packet[3];
    if (packet.size() < commandHeader + length) return std::nullopt;
    return Command{.opcode = read16(packet, 1),
                   .parameters = packet.subspan(commandHeader, length)};
}

Bytes commandComplete(std::uint16_t opcode, ByteView returned) {
    Bytes packet = event(commandCompleteEvent, 3 + returned.size());
    append8(packet, commandCredits);
    append16(packet, opcode);
    append(packet, returned);
    return packet;
}

Bytes advertisingReport(ReportType type, const Address& address, ByteView data, int rssi) {
    Bytes packet = event(lowEnergyEvent, 12 + data.size());
    append8(packet, advertisingReportSubevent);
    append8(packet, 1); // one report in this event
    append8(packet, static_cast<unsigned>(type));
    append8(packet, static_cast<unsigned>(address.type));
    append(packet, address.bytes);
    append8(packet, static_cast<unsigned>(data.size()));
    append(packet, data);
    append8(packet, static_cast<std::uint8_t>(rssi));
    return packet;
}

} // namespace controller
