// Who controls a file or folder. What an update puts in place runs as its user, so nobody else may
// have a hand in where it comes from or goes to.
#pragma once

#include <filesystem>

namespace wegslot {

/// Whether the user alone owns it and may write to it; links are not followed.
[[nodiscard]] bool isOnlyOurs(const std::filesystem::path& path);

/// As `isOnlyOurs`, or the system's: root's, and nobody else may write to it.
[[nodiscard]] bool isOursOrTheSystems(const std::filesystem::path& path);

} // namespace wegslot
