// The identifier of a Bluetooth device on Linux: made from its identity address, so that it is
// the same for every adapter, daemon and machine, and survives a new pairing.
#pragma once

#include "base/uuid.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace wegslot {

/// The version 5 UUID (RFC 9562, section 5.5) of `address` ("AA:BB:CC:DD:EE:FF", any case) and
/// `type` ("public" or "random") in Wegslot's own namespace.
[[nodiscard]] Uuid deviceId(std::string_view address, std::string_view type);

/// Likewise of a device of which no fixed address is known, from the hash of what it is known by.
[[nodiscard]] Uuid identityId(std::span<const std::uint8_t> hash);

/// Whether an address changes, as a private one does (Bluetooth Core Specification 5.4, volume 6,
/// part B, 1.3.2): random, and without the two highest bits that mark a static one. An address
/// that is none counts as changing.
[[nodiscard]] bool isChangingAddress(std::string_view address, std::string_view type);

/// The version 5 UUID of `name` in `space`.
[[nodiscard]] Uuid nameBased(const Uuid& space, std::string_view name);

} // namespace wegslot
