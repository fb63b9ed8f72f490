// A status as the command line shows it: lines for a person, or JSON for a script.
#pragma once

#include "control/control_status.h"

#include <string>
#include <string_view>
#include <vector>

namespace wegslot::control {

// In the reader's language, except for what only a newer or an older Wegslot could put into words.
// `wallTime` writes instants of the clock on the wall.

/// The state, then a line a key. Several lines, without the last line feed.
[[nodiscard]] std::string statusText(const Status& status, const ClockTime& wallTime);

/// A line a key, its id first; says so when there are none.
[[nodiscard]] std::string keysText(const Status& status);

/// A line a device, its id first; what is the matter where there are none.
[[nodiscard]] std::vector<std::string> nearbyLines(const Nearby& nearby);

/// `clock`: "14:02:11", when it was heard of.
[[nodiscard]] std::string changeText(const Change& change, std::string_view clock,
                                     const ClockTime& wallTime);

/// For how long somebody who added an identity waits for its device to be heard: a phone whose
/// screen is off may be silent for most of a minute.
inline constexpr Nanoseconds identityPatience = std::chrono::seconds{60};

// What becomes of an identity that was added: a line each, several for one that is not heard.
[[nodiscard]] std::string identityAddedText(std::string_view name, Dbm threshold);
[[nodiscard]] std::string identityHeardText(Dbm rssi);
[[nodiscard]] std::string identityUnheardText(std::string_view name);

// One JSON object (an array for keys) on one line. Numbers are dBm; "rssi" and "pausedUntil"
// (seconds since 1970) are null where there are none. Dutch, as they were told.

[[nodiscard]] std::string statusJson(const Status& status);
[[nodiscard]] std::string keysJson(const Status& status);
/// `instant`: seconds since 1970.
[[nodiscard]] std::string changeJson(const Change& change, std::int64_t instant);

} // namespace wegslot::control
