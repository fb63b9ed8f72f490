// What an installed or unpacked Wegslot says of itself: the four keys and the identifier in its
// Info.json. Feed and public key are there only in builds that update themselves.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// A raw Ed25519 public key (RFC 8032).
using PublicKey = std::array<std::uint8_t, 32>;

struct BundleInfo {
    std::string identifier;       ///< CFBundleIdentifier; empty when absent
    std::string version = "?";    ///< CFBundleShortVersionString
    std::int64_t build = 0;       ///< CFBundleVersion, a text; 0 when it is no number
    std::string feed;             ///< WSUpdateFeedURL as written; empty for none
    std::optional<PublicKey> key; ///< WSUpdatePublicKey, base64 of 32 bytes

    friend bool operator==(const BundleInfo&, const BundleInfo&) = default;
};

/// Where an application's folder says who it is, and its program.
inline constexpr auto infoFile = "Info.json";
inline constexpr auto programFile = "wegslot";

/// What the program answers to `--version`: "wegslot 1.4 (27)".
[[nodiscard]] std::string versionLine(std::string_view version, std::int64_t build);

/// The build in such an answer, its line feed included, whatever version stands there.
[[nodiscard]] std::optional<std::int64_t> buildInVersionLine(std::string_view answer);

/// Reads an Info.json. Never fails: what is absent or of another type counts as not there, and so
/// does everything in a text that is no JSON object.
[[nodiscard]] BundleInfo readBundleInfo(std::string_view json);

/// A whole decimal number: digits with perhaps one sign in front, within 64 bits. Nothing else,
/// blanks included.
[[nodiscard]] std::optional<std::int64_t> buildNumber(std::string_view text);

} // namespace wegslot
