// Runs another program to its end, for its answer.
#pragma once

#include "base/result.h"
#include "base/time.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// What the program printed, as much as `most` bytes of it. It sees neither this process's
/// environment nor its display, and looks for others in the system's folders only. The failure
/// reads "tar mislukt (2)": the name of the program (the first word, a path) and its exit status,
/// 128 more than the number of the signal that ended it. Blocks, so not for the main thread;
/// `patience`: when to end it, with whatever it started.
[[nodiscard]] Result<std::string> runTool(const std::vector<std::string>& words,
                                          std::optional<Nanoseconds> patience = {},
                                          std::size_t most = 4096);

} // namespace wegslot
