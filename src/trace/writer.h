// Writes the lines of a trace, and its events alone: what the reader makes of one is the event that
// was written.
#pragma once

#include "trace/event.h"

#include <string>

namespace wegslot {

/// The line with its line feed. Its time must be whole milliseconds. A number that JSON cannot say
/// is written as one that means the same: a duration that is none as 0, any other as the largest.
[[nodiscard]] std::string written(const trace::Line& line);

/// An event alone, as an object of one member: a line without its time and its line feed.
[[nodiscard]] std::string written(const trace::Event& event);

} // namespace wegslot
