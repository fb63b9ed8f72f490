// What the controller, and every device near it, is able to do.
#pragma once

#include <array>
#include <cstdint>

namespace controller {

inline constexpr unsigned bluetooth50 = 9;
inline constexpr unsigned manufacturerForTests = 0xFFFF;

/// What one data packet between the kernel and the controller carries.
inline constexpr unsigned dataPacketLength = 251;
inline constexpr unsigned dataPackets = 8;
inline constexpr unsigned acceptListSize = 16;

/// What goes through the air at a time: at first, and once both sides have agreed on more.
inline constexpr unsigned defaultDataOctets = 27;
inline constexpr unsigned defaultDataMicroseconds = 328;
inline constexpr unsigned maximumDataOctets = 251;
inline constexpr unsigned maximumDataMicroseconds = 2120;

/// Encryption and long data packets; no extended advertising, so that the kernel scans and connects
/// in the older way.
inline constexpr std::array<std::uint8_t, 8> lowEnergyFeatureMask{0x21};

} // namespace controller
