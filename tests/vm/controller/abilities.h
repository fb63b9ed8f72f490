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

/// Encryption, questions about features from either side, and long data packets.
inline constexpr std::array<std::uint8_t, 8> lowEnergyFeatureMask{0x29};
/// In the second octet of the mask. Of the extended commands the controller has those for
/// advertising alone, so that the kernel scans and connects in the older way.
inline constexpr unsigned extendedAdvertisingFeature = 0x10;

} // namespace controller
