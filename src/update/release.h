// The newest release as the feed describes it: one JSON object at a fixed address.
#pragma once

#include "base/result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

struct Release {
    std::string version;   ///< for people, "1.4": 64 fit characters at most; never compared
    std::int64_t build;    ///< the only thing that is compared
    std::string url;       ///< of the image, absolute or relative to the feed
    std::string sha256;    ///< of the image, 64 hexadecimal digits of either case
    std::string signature; ///< base64 of the Ed25519 signature over the image
    std::optional<std::string> notes;

    friend bool operator==(const Release&, const Release&) = default;
};

/// A feed may be no larger, in bytes: ours has a few hundred.
inline constexpr std::size_t largestFeed = std::size_t{1} << 20U;

/// The failure says which key is wrong. Keys that are not known are passed over; `null` counts as
/// absent for what need not be there, and as wrong for what must.
[[nodiscard]] Result<Release> readRelease(std::string_view feed);

} // namespace wegslot
