#include "scanner/bluez/hci_wire.h"

#include <charconv>

namespace wegslot::bluez::hci {
namespace {

constexpr std::uint8_t commandPacket = 0x01;

// The handle has 12 bits; the others are flags in some packets.
constexpr std::uint16_t handleBits = 0x0FFF;

std::uint16_t number(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8U);
}

template <typename Number>
bool parse(std::string_view text, Number& value, int base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc{} && end == text.data() + text.size() && !text.empty();
}

} // namespace

std::optional<Address> addressOf(std::string_view text) {
    Address address{};
    if (text.size() != 17) return std::nullopt;
    for (std::size_t i = 0; i < address.size(); ++i) {
        if (i > 0 && text[3 * i - 1] != ':') return std::nullopt;
        if (!parse(text.substr(3 * i, 2), address[address.size() - 1 - i], 16)) return std::nullopt;
    }
    return address;
}

std::optional<std::uint16_t> adapterNumber(std::string_view path) {
    constexpr std::string_view before = "/org/bluez/hci";
    std::uint16_t adapter = 0;
    if (!path.starts_with(before) || !parse(path.substr(before.size()), adapter, 10))
        return std::nullopt;
    return adapter;
}

StandingLinks standingWith(const Address& address, std::span<const ListedConnection> connections) {
    StandingLinks links;
    for (const ListedConnection& connection : connections) {
        const bool stands =
            connection.state == connectedState || connection.state == configuringState;
        if (connection.address != address || !stands) continue;
        if (connection.type != lowEnergyLink) {
            links.classic = true;
            continue;
        }
        links.lowEnergy = true;
        links.calledUs = connection.outgoing == 0;
    }
    return links;
}

std::array<std::uint8_t, 6> readRssiCommand(std::uint16_t handle) {
    return {commandPacket,
            readRssiOpcode & 0xFFU,
            readRssiOpcode >> 8U,
            2,
            static_cast<std::uint8_t>(handle & 0xFFU),
            static_cast<std::uint8_t>(handle >> 8U)};
}

std::optional<RssiRead> rssiRead(std::span<const std::uint8_t> packet) {
    // Packet type, event, length, free command slots, opcode, status, handle, strength.
    if (packet.size() < 10 || packet[0] != eventPacket || packet[1] != commandComplete ||
        number(packet, 4) != readRssiOpcode)
        return std::nullopt;
    constexpr std::uint8_t notAvailable = 127;
    const bool measured = packet[6] == 0 && packet[9] != notAvailable;
    const int rssi = packet[9] < 0x80 ? packet[9] : packet[9] - 0x100; // two's complement
    return RssiRead{static_cast<std::uint16_t>(number(packet, 7) & handleBits),
                    measured ? std::optional(rssi) : std::nullopt};
}

std::optional<Disconnection> disconnection(std::span<const std::uint8_t> packet) {
    // Packet type, event, length, status, handle, reason.
    if (packet.size() < 7 || packet[0] != eventPacket || packet[1] != disconnectionComplete ||
        packet[3] != 0)
        return std::nullopt;
    return Disconnection{static_cast<std::uint16_t>(number(packet, 4) & handleBits), packet[6]};
}

} // namespace wegslot::bluez::hci
