// An explanation in words, for people; and as JSON, for programs.
#pragma once

#include "base/translation.h"
#include "history/explain.h"

#include <functional>
#include <string>
#include <vector>

namespace wegslot::history {

/// Who reads it.
struct Reader {
    /// What the user calls the key.
    std::function<Message(Row key)> nameOf;
    /// What the clock on the wall showed: "22-11 12:31:07".
    std::function<std::string(TimePoint wallTime)> when;
};

/// "12:31:07 Gelockt": what a decision was.
[[nodiscard]] Message title(const Decision& decision, const Stretch& stretch, const Reader& reader);

/// Each a sentence: what was known of the keys, which change would have helped, and its price.
[[nodiscard]] std::vector<Message>
sentences(const Explanation& explanation, const std::vector<Stretch>& past, const Reader& reader);

/// One object on one line. Times are of the clock on the wall, in UTC.
[[nodiscard]] std::string json(const Explanation& explanation, const std::vector<Stretch>& past,
                               const Reader& reader);

} // namespace wegslot::history
