// Looks through an image before anything of it is unpacked: a gzipped tar archive of one folder,
// "Wegslot.app". Accepts only the plainest archives (ustar, files, folders and links that stay
// inside), so that the system's tar cannot see anything else in it than what was looked at.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace wegslot {

/// What an image may become, in bytes.
inline constexpr std::uint64_t largestUnpacked = std::uint64_t{1} << 30U;

/// The folder that holds the application.
inline constexpr auto bundleFolder = "Wegslot.app";

/// Why the image is not to be unpacked, naming the member; nothing when there is no objection.
/// Reads as far as the first objection, and keeps nothing of what it has unpacked. `most`: bytes
/// of all files together.
[[nodiscard]] std::optional<std::string> objectionTo(std::span<const std::uint8_t> image,
                                                     std::uint64_t most = largestUnpacked);

} // namespace wegslot
