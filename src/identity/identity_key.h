// What a device with private addresses is known by: its identity resolving key (IRK, Bluetooth Core
// Specification 5.4, volume 3, part H, 2.4.2). Who has it can follow the device for as long as it
// lives, so it is never printed, logged or sent, and goes from memory with the object that holds
// it.
#pragma once

#include "base/result.h"
#include "base/uuid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace wegslot {

/// Overwrites what stands there, also where nobody would read it again.
void wipe(std::span<std::uint8_t> bytes);

/// The same with all of an object that is its bytes and no more.
template <typename T>
void wipe(T& object) {
    static_assert(std::is_trivially_copyable_v<T>);
    wipe(std::span(reinterpret_cast<std::uint8_t*>(&object), sizeof object)); // NOLINT
}

class IdentityKey {
public:
    static constexpr std::size_t size = 16;
    static constexpr std::size_t digits = 2 * size; ///< as it is written

    IdentityKey() = default;
    IdentityKey(const IdentityKey&) = default;
    IdentityKey& operator=(const IdentityKey&) = default;
    ~IdentityKey() { wipe(std::span(bytes)); }

    /// The same, read from its other end: sources do not agree on which is the first.
    [[nodiscard]] IdentityKey reversed() const;

    /// The device's identifier: a name-based UUID of its hash, the same for either order.
    [[nodiscard]] Uuid deviceId() const;

    /// 32 hexadecimal digits; nothing for anything else.
    [[nodiscard]] static std::optional<IdentityKey> fromHexadecimal(std::string_view text);

    /// Appends the 32 digits, in lower case.
    void appendHexadecimal(std::pmr::string& text) const;

    friend bool operator==(const IdentityKey&, const IdentityKey&) = default;

    std::array<std::uint8_t, size> bytes{};
};

/// What somebody pasted.
struct PastedIdentity {
    IdentityKey key;
    /// The identifier that the device has by its fixed address, where that was pasted too.
    std::optional<Uuid> id;
};

/// Longer is nothing that holds an identity, in bytes.
inline constexpr std::size_t longestPasted = 16'384;

/// Reads an identity as the known sources show it: 32 hexadecimal digits, together or in pairs,
/// with "irk:", "Key=" or a registry's "hex:" before them, base64 of 16 bytes, or a piece of a
/// property list with "Remote IRK" and perhaps "Public". A failure says what is wrong, and where,
/// and repeats nothing of it.
Result<PastedIdentity> readIdentity(std::string_view text);

} // namespace wegslot
