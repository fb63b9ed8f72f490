// Reads a trace: JSON Lines, one event a line, each judged strictly, because a replay that
// guesses what was meant proves nothing. The order of lines is judged here too; what the events
// do is the replay's business.
#pragma once

#include "base/result.h"
#include "trace/event.h"

#include <string_view>

namespace wegslot {

class TraceReader {
public:
    /// Reads the next line, without its line feed. A failure says what is wrong; the line then
    /// counts as not read.
    Result<trace::Line> read(std::string_view text);

    /// True for the line read last: it belongs to the set-up, before the core exists. These are
    /// the start, and settings that stand first or directly after it at time zero.
    [[nodiscard]] bool isSetUp() const { return position_ != Position::running; }

private:
    enum class Position { beginning, afterStart, afterSettings, running };

    Nanoseconds last_{0};
    Position position_ = Position::beginning;
};

/// Reads an event alone: an object of one member, a line without its time.
Result<trace::Event> readEvent(std::string_view text);

/// Reads `value` as the preference `name` of a settings line: JSON, or else a bare text.
Result<PreferenceValue> readPreference(std::string_view name, std::string_view value);

} // namespace wegslot
