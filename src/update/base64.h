// Base64 as keys and signatures are written (RFC 4648, section 4), read strictly: no line breaks,
// no blanks, complete padding, and no bits left over. Each value has exactly one written form.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace wegslot {

/// Nothing for what is not strict base64.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text);

} // namespace wegslot
