// How the history lies in its file. docs/decisions/0043-history-file.md says why.
#pragma once

#include "base/time.h"
#include "history/linux/database.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace wegslot::history {

/// An instant as it stands there, rounded down.
[[nodiscard]] inline std::int64_t millisecondsOf(TimePoint at) {
    return std::chrono::floor<std::chrono::milliseconds>(at.time_since_epoch()).count();
}

/// The file that is written, made where it is missing and looked through where it is not.
[[nodiscard]] Database openedToWrite(const std::filesystem::path& file,
                                     std::chrono::milliseconds patience);

/// Nothing where nothing has been kept. The file stays as it is.
[[nodiscard]] std::optional<Database> openedAsItIs(const std::filesystem::path& file,
                                                   std::chrono::milliseconds patience);

} // namespace wegslot::history
