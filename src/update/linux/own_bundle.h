// The folder that the running program belongs to, if it came as one: it says so by an Info.json
// beside the program.
#pragma once

#include "update/bundle_info.h"

#include <filesystem>
#include <optional>

namespace wegslot {

struct OwnBundle {
    std::filesystem::path folder; ///< where it really is: no link in it
    BundleInfo info;
};

/// Nothing for a program on its own, as a distribution installs it. `program`: its path.
[[nodiscard]] std::optional<OwnBundle>
bundleOf(const std::filesystem::path& program = "/proc/self/exe");

} // namespace wegslot
