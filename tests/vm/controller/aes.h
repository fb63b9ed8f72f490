// The block cipher that Bluetooth's security functions are made of.
#pragma once

#include <array>
#include <cstdint>

#include "bytes.h"

namespace controller {

/// A key or a block, least significant byte first as on the air.
using Key = std::array<std::uint8_t, 16>;

/// AES-128 of one block.
Key encrypt(const Key& key, const Key& block);

/// AES-CMAC of a message, which goes most significant byte first.
Key authenticationCode(const Key& key, ByteView message);

} // namespace controller
