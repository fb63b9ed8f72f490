// A device address with its kind; the first byte kept is the last one shown, as on the air.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "bytes.h"

namespace controller {

enum class AddressType : std::uint8_t { Public = 0, Random = 1 };

struct Address {
    std::array<std::uint8_t, 6> bytes{};
    AddressType type = AddressType::Public;

    bool operator==(const Address&) const = default;

    bool operator<(const Address& other) const {
        return std::tie(bytes, type) < std::tie(other.bytes, other.type);
    }
};

/// From "AA:BB:CC:DD:EE:FF", in either case.
std::optional<Address> parseAddress(std::string_view text, AddressType type);

/// From seven bytes as commands carry them: the type, then the address. The caller has checked the
/// length.
Address readAddress(ByteView typeAndAddress);

std::string toText(const Address& address);

} // namespace controller
