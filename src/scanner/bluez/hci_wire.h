// What goes over a raw HCI socket, as the kernel and the Bluetooth Core Specification (5.4, volume
// 4, parts A and E) lay it out: one command, two events, one list of connections. Pure.
#pragma once

#include "scanner/bluez/links.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace wegslot::bluez::hci {

/// Bytes of a device's address, the last of its text first.
using Address = std::array<std::uint8_t, 6>;

/// Reads "AA:BB:CC:DD:EE:FF", any case; nothing for anything else.
[[nodiscard]] std::optional<Address> addressOf(std::string_view text);

/// The number n of "/org/bluez/hciN"; nothing for another path.
[[nodiscard]] std::optional<std::uint16_t> adapterNumber(std::string_view path);

/// Link types of the kernel: what a low-energy link is listed as.
inline constexpr std::uint8_t lowEnergyLink = 0x80;
/// The states of one that stands (BT_CONNECTED and BT_CONFIG of the kernel's
/// net/bluetooth/bluetooth.h): in the second, over Low Energy, both ends still tell each other what
/// they can, and BlueZ has announced it. Those still being made are listed too.
inline constexpr std::uint16_t connectedState = 1;
inline constexpr std::uint16_t configuringState = 7;

/// The packet type of events.
inline constexpr std::uint8_t eventPacket = 0x04;

/// A connection as the kernel lists it (struct hci_conn_info).
struct ListedConnection {
    std::uint16_t handle;
    Address address;
    std::uint8_t type;
    std::uint8_t outgoing;
    std::uint16_t state;
    std::uint32_t linkMode;
};
static_assert(sizeof(ListedConnection) == 16);

/// Which of `connections` stand with `address`.
[[nodiscard]] StandingLinks standingWith(const Address& address,
                                         std::span<const ListedConnection> connections);

/// Read RSSI (opcode 0x1405) for the connection with `handle`, as a packet.
[[nodiscard]] std::array<std::uint8_t, 6> readRssiCommand(std::uint16_t handle);

inline constexpr std::uint16_t readRssiOpcode = 0x1405;
inline constexpr std::uint8_t commandComplete = 0x0E;
inline constexpr std::uint8_t disconnectionComplete = 0x05;

/// The answer to Read RSSI.
struct RssiRead {
    std::uint16_t handle;
    std::optional<int> rssi; ///< dBm; nothing when it failed or was not available
    friend bool operator==(const RssiRead&, const RssiRead&) = default;
};

/// The packet as such an answer; nothing when it is another or too short.
[[nodiscard]] std::optional<RssiRead> rssiRead(std::span<const std::uint8_t> packet);

/// The end of a connection.
struct Disconnection {
    std::uint16_t handle;
    std::uint8_t reason; ///< an error code of volume 1, part F
    friend bool operator==(const Disconnection&, const Disconnection&) = default;
};

[[nodiscard]] std::optional<Disconnection> disconnection(std::span<const std::uint8_t> packet);

} // namespace wegslot::bluez::hci
