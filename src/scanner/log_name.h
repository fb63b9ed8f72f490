// What a device calls itself, for a line of the log with fields.
#pragma once

#include <string>
#include <string_view>

namespace wegslot {

/// `name` fit for a line, and such that it fakes no field of it: of " type=" in it, the blank
/// becomes U+FFFD, as it does before any word with an equals sign.
[[nodiscard]] std::string nameForLog(std::string_view name);

} // namespace wegslot
