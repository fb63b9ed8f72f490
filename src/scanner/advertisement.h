// One Bluetooth LE advertisement as an adapter of the radio hands it over, and the few
// questions that its bytes answer. The texts and bytes are views, valid for the call only.
#pragma once

#include "base/uuid.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace wegslot {

struct Advertisement {
    Uuid id;
    int rssi = 0; ///< dBm as received; 127 and 0 mean that the radio has none
    std::optional<std::string_view> peripheralName;                ///< as the stack knows it
    std::optional<std::span<const std::uint8_t>> manufacturerData; ///< company id first
    std::optional<std::string_view> localName;                     ///< as in this advertisement

    /// The first message type of the data of company 0x004C (Bluetooth SIG, "Company
    /// Identifiers", sent little-endian); nothing for other companies and shorter data.
    [[nodiscard]] std::optional<std::uint8_t> continuityType() const;

    /// The stack's name when it has one, even an empty one; else the advertised one. Empty
    /// when there is none.
    [[nodiscard]] std::string_view name() const;
};

/// True from -126 to -1 dBm: what a controller may report as measured (Bluetooth Core 5.4, Vol 4,
/// Part E, 7.7.65.2, gives -127 to 20 and 127 for "not available"; -127 and 0 or more are noise).
[[nodiscard]] bool isMeasured(int rssi);

/// True for a device of the maker whose phones and watches can be connected. Type 0x02 (a
/// beacon) counts as foreign on purpose.
[[nodiscard]] bool isAppleType(std::optional<std::uint8_t> continuityType);

} // namespace wegslot
