// Starts a program independent of this one: in its own session, with no signal blocked or ignored
// and nothing open but its three standard streams.
#pragma once

#include "base/result.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace wegslot {

struct SpawnOptions {
    /// "NAME=VALUE" each; none for this process's own.
    std::optional<std::vector<std::string>> environment;
    /// Where its standard output goes; nowhere by default, as with its other streams.
    int output = -1;
};

/// The first word is the program, looked for in PATH unless it has a slash. Its process has to be
/// waited for, and leads its process group. The failure names the program.
[[nodiscard]] Result<pid_t> spawn(const std::vector<std::string>& words,
                                  const SpawnOptions& options = {});

} // namespace wegslot
