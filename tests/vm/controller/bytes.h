// Byte strings in the order of the air: every number of more than one byte goes least significant
// byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace controller {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline void append8(Bytes& to, unsigned value) { to.push_back(static_cast<std::uint8_t>(value)); }

inline void append16(Bytes& to, unsigned value) {
    append8(to, value & 0xFFU);
    append8(to, (value >> 8U) & 0xFFU);
}

inline void append(Bytes& to, ByteView bytes) {
    // One by one: GCC 12 takes inserting a range after a single byte for an overrun.
    for (const std::uint8_t byte : bytes)
        to.push_back(byte);
}

/// The caller has made sure that `from` has two bytes at `at`.
inline std::uint16_t read16(ByteView from, std::size_t at) {
    return static_cast<std::uint16_t>(from[at] | (from[at + 1] << 8U));
}

} // namespace controller
