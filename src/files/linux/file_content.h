// Reads a whole file that anybody may have put there.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace wegslot {

/// What stands in a plain file of at most `most` bytes; nothing for what is larger, no plain file
/// or not readable. Never waits for a pipe or a device.
[[nodiscard]] std::optional<std::string> contentOf(const std::filesystem::path& file,
                                                   std::size_t most);

} // namespace wegslot
